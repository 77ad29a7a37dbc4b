#pragma once

#include "foundation/file_stamp.h"
#include "foundation/json.h"
#include "usage/quota_notice.h"
#include "usage/quota_window.h"
#include "usage/usage_sample.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// Ends of the windows as an agent was told them by its server, and when that was.
struct ToldWindowEnds {
    Date toldAt;
    std::optional<Date> fiveHour;
    std::optional<Date> sevenDay;

    bool operator==(const ToldWindowEnds&) const = default;
};

/// The Claude desktop app's history of the plan usage, one point about every five minutes, and the
/// quota windows that follow from it. The file is read only; `samples` may be called by any thread,
/// everything else is a pure function.
class UsageHistoryStore {
public:
    using Sample = UsageSample;
    using Window = QuotaWindow;
    using Notice = QuotaNotice::Notice;

    /// One account (organisation) of several.
    struct Konto {
        std::string org;
        int rang = 0;       ///< 0 is the account in use
        std::string titel;  ///< the user's name for it, else a substitute
        std::optional<Window> fuenfStunden;
        std::optional<Window> siebenTage;
        std::optional<Date> gemessenAm;  ///< latest measurement
        bool istVeraltet = false;

        bool operator==(const Konto&) const = default;
    };

    /// Of more accounts than this the latest measured have windows.
    static constexpr std::size_t mostAccounts = 32;
    /// Of more samples than this the latest count.
    static constexpr std::size_t mostSamples = 100'000;
    /// How far resets may lie from the rhythm of their period.
    static constexpr Seconds rhythmTolerance{43'200};

    /// `givenPath`: {"samples": [{"t": ms since 1970, "u": {"fh", "sd", "xu"}, "org"}]}.
    explicit UsageHistoryStore(std::string givenPath);

    /// That of this process, at the usual place.
    static UsageHistoryStore& shared();

    /// Ascending by date; empty where the file is missing, unreadable or damaged. The file is read
    /// again only where its modification date changed. Any thread.
    std::shared_ptr<const UsageSamples> samples();

    /// What such a file holds, ascending by date; nothing where it is not one.
    static std::optional<UsageSamples> decode(std::string_view padded);

    static std::optional<Window> fiveHourWindow(const UsageSamples& from, Date now,
                                                const std::optional<Notice>& meldung,
                                                Calendar calendar, const ToldWindowEnds& told = {});
    static std::optional<Window> sevenDayWindow(const UsageSamples& from, Date now,
                                                Calendar calendar, const ToldWindowEnds& told = {});

    /// One per organisation, the account in use first; empty where the samples name fewer than
    /// two. Names are those of the setting `accountNames`, an object from organisation to name.
    /// Notice and told ends are the first account's.
    static std::vector<Konto> konten(const UsageSamples& from, Date now,
                                     const std::optional<Notice>& meldung, const Json& accountNames,
                                     Calendar calendar, const ToldWindowEnds& told = {});

    /// What an account without a name of the user's is called, in the interface language.
    static std::string substituteTitle(int rang);

    /// The organisations of the samples, the one of the most recent sample first, then in the
    /// order of their latest samples. Samples after `now` do not count.
    static std::vector<std::string> orgs(const UsageSamples& from, Date now = Date::max());

    /// The organisation of the latest sample that carries one; of several of one date the first.
    /// Samples after `now` do not count.
    static std::optional<std::string> primaryOrg(const UsageSamples& from, Date now = Date::max());

    /// All samples without `org`; otherwise its samples and those that carry none.
    static UsageSamples samples(const std::optional<std::string>& org, const UsageSamples& from);

    static QuotaValues fiveHourValues(const UsageSamples& from);
    static QuotaValues sevenDayValues(const UsageSamples& from);

    /// The start of the window that the last value lies in, as the values tell it; nothing where no
    /// start is seen or the window has run out.
    static std::optional<Date> windowStart(const QuotaValues& values, Seconds length, Date now);
    static std::optional<Date> windowEnd(const QuotaValues& values, Seconds length, Date now);

    /// The moments of all resets: drops by ten points or more to five or less.
    static std::vector<Date> resets(const QuotaValues& values);
    static std::optional<Date> nextReset(const QuotaValues& values, Seconds period, Date now);

    /// The later of two dates that lie a multiple of the period apart, give or take the tolerance:
    /// the latest there is.
    static std::optional<Date> rhythmus(const std::vector<Date>& dates, Seconds period,
                                        Seconds toleranz);

    static std::optional<Window::Projection> projection(int percent, Date since, Date until,
                                                        Date now);

    /// Percent points consumed since local midnight, 0 … the current percent; nothing without a
    /// value of today and one from before.
    static std::optional<int> usedToday(const QuotaValues& values, Date now, Calendar calendar);

    static std::optional<Window::DailyBudget> dailyBudget(int percent, std::optional<int> usedToday,
                                                          std::optional<Date> until, Date now,
                                                          Calendar calendar);

private:
    const std::string path;
    std::mutex lock;
    std::shared_ptr<const UsageSamples> cachedSamples;  ///< guarded by `lock`
    std::optional<FileStamp> cachedStamp;               ///< of the file they came from; guarded
};

}  // namespace fleetwise
