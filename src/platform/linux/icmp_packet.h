// The few ICMP messages that an echo meets (RFC 792): the request, its reply, and errors about it. What arrives was written by
// strangers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvane {

/// An echo request with its checksum, from the ICMP header on.
std::string EchoRequest(std::uint16_t identifier, std::uint16_t sequence, std::string_view data);

/// The ICMP message in an IPv4 packet; blank when it is none.
std::string_view IcmpMessageOf(std::string_view packet);

/// What a received ICMP message says about `request`: 0 when it is the very echo, type * 256 + code when it is an error about it.
/// Nothing when it is damaged, another machine's request or about somebody else's.
std::optional<int> EchoStatus(std::string_view message, std::string_view request);

/// Whether two ICMP messages bear the same identifier and sequence number.
bool SameEcho(std::string_view message, std::string_view request);

}  // namespace korvane
