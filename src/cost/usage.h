#pragma once

#include "cost/token_tally.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace fleetwise {

/// What one model was used for.
struct ModelSlice {
    TokenTally tally;
    std::map<std::string, std::int64_t, std::less<>> efforts;  ///< requests by effort, where told
    std::int64_t requests = 0;

    bool operator==(const ModelSlice&) const = default;
};

/// By the model's id; "" stands for requests that name none.
using ModelSlices = std::map<std::string, ModelSlice, std::less<>>;
using ModelTallies = std::map<std::string, TokenTally, std::less<>>;

/// One request to a model.
struct Request {
    std::string_view model;
    std::string_view day;     ///< "2026-11-21" on the user's calendar; empty where nothing tells
    std::string_view effort;  ///< empty where none is told
    TokenTally tally;
};

/// What requests used.
struct Usage {
    ModelSlices byModel;
    /// By the day of the user's calendar, "2026-11-21"; undated requests are missing here.
    std::map<std::string, ModelTallies, std::less<>> days;

    bool operator==(const Usage&) const = default;

    void add(const Request& request);

    TokenTally tally() const;
    std::int64_t requests() const;
};

/// Without `part`, which is contained in `whole`.
Usage operator-(Usage whole, const Usage& part);

}  // namespace fleetwise
