#include "hook/exchange_names.h"

#include <cstdio>

namespace fleetwise::hook {

bool exchangeNames(int folder, const char* first, const char* second) {
    return ::renameat2(folder, first, folder, second, RENAME_EXCHANGE) == 0;
}

}  // namespace fleetwise::hook
