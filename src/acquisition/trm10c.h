#pragma once

#include "app/settings/channels.h"

#include <QByteArray>
#include <QByteArrayList>
#include <array>

/// The messages exchanged with a TOHO TRM-10C recorder, as bytes.
///
/// One reading: the four read commands, each in a write of its own, then one reply of 186 bytes,
/// then the closing command. The reply, offsets from its start:
///   0 22 characters, not read | 22 six slots of 27 characters | 184 CR LF
/// A slot ends with the channel's value in 10 characters; the rest of it is not read.
namespace trm10c
{
inline constexpr qsizetype kReplySize = 186;
inline constexpr std::size_t kChannels = channels::kCount;

using Values = std::array<double, kChannels>; // degrees Celsius, channels 01 to 06

/// The commands that ask for all channels, in the order sent. Only some begin with ESC, as the
/// recorder requires.
QByteArrayList readCommands();

/// Ends the dialogue after a complete reply.
QByteArray closeCommand();

/// The values of a reply of kReplySize bytes. A field without a leading number is 0.
Values channelValues(const QByteArray &reply);
} // namespace trm10c
