#pragma once

namespace fleetwise::hook {

/// Exchanges two files of the folder `folder` in one step: each gets the other's name. Whether
/// that worked; errno tells why not.
bool exchangeNames(int folder, const char* first, const char* second);

}  // namespace fleetwise::hook
