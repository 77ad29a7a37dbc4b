#include "usage/window_reset_watch.h"

#include "usage/plausible_date.h"

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

/// Two sources may show one reset at different moments, and the one measured late may still have
/// the old figure in between; a window never begins anew that soon.
constexpr Seconds sameReset{1'800};

}  // namespace

std::optional<int> WindowResetWatch::observe(const QuotaValues& fiveHour,
                                             const std::optional<std::string>& org, Date now,
                                             std::optional<Date> toldEnd) {
    const std::optional<Date> expectedEnd = std::exchange(lastToldEnd, toldEnd);
    const auto end = std::find_if(fiveHour.rbegin(), fiveHour.rend(), [&](const auto& value) {
                         return !isOfFuture(value.first, now);
                     }).base();
    if (end == fiveHour.begin()) return {};
    // Samples that name no account say nothing of a change.
    const bool isOtherAccount = org && lastOrg && *org != *lastOrg;
    if (org) lastOrg = org;
    // A clock that was ahead and was set back must not silence all until then.
    if (isOtherAccount || (last && isOfFuture(last->first, now))) last.reset();
    if (isOtherAccount) toldAt.reset();
    if (!last) {
        last = *(end - 1);
        return {};
    }
    std::optional<int> reset;
    for (auto value = std::upper_bound(
             fiveHour.begin(), end, last->first,
             [](Date date, const auto&candidate) { return date < candidate.first; });
         value != end; ++value) {
        const auto& [date, percent] = *value;
        const bool isDrop = last->second - percent >= leastDrop && date - last->first <= fiveHours;
        const bool isKnown = toldAt && date - *toldAt < sameReset;
        const bool isEarly = expectedEnd && date + serverTolerance < *expectedEnd;
        if (isDrop && !isKnown && !isEarly && now - date <= fiveHours) {
            reset = last->second;
            toldAt = date;
        }
        last = *value;
    }
    return reset;
}

}  // namespace fleetwise
