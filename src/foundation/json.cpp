#include "foundation/json.h"

namespace fleetwise {

std::optional<Json> parseJson(std::string_view text) {
    Json document = Json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (document.is_discarded()) return {};
    return document;
}

std::string encodeJson(const Json& document) {
    return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace fleetwise
