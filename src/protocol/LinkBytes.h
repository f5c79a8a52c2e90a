#pragma once

// The control bytes of the serial protocol.
namespace linkbytes {
inline constexpr char STX = 0x02;
inline constexpr char ETX = 0x03;
inline constexpr char ENQ = 0x05;
inline constexpr char ACK = 0x06;
inline constexpr char NACK = 0x15;
} // namespace linkbytes
