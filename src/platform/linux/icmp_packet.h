// The ICMP messages that concern an echo (RFC 792): the request, its reply, and errors about it. Received packets are untrusted.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvane {

/// Returns an echo request with its checksum, starting with the ICMP header.
std::string EchoRequest(std::uint16_t identifier, std::uint16_t sequence, std::string_view data);

/// Returns the ICMP message in an IPv4 packet, empty when there is none.
std::string_view IcmpMessageOf(std::string_view packet);

/// Returns what a received ICMP message says about `request`: 0 for its echo, type * 256 + code for an error about it. Returns
/// nothing when the message is damaged, is another machine's request, or is about another request.
std::optional<int> EchoStatus(std::string_view message, std::string_view request);

/// Returns whether two ICMP messages have the same identifier and sequence number.
bool SameEcho(std::string_view message, std::string_view request);

}  // namespace korvane
