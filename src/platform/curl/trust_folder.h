// Where the system keeps the certificate authorities that it trusts, in the form that costs least.
#pragma once

#include <string>

namespace korvane {

/// The folder in which each authority is a file named by the hash of its subject ("002c0b4f.0", see openssl-rehash(1)), blank
/// when the system has none. A transfer reads the one file it needs there, while the bundle of all authorities takes 20 ms of CPU
/// and a megabyte to read each time.
std::string SystemTrustFolder();

}  // namespace korvane
