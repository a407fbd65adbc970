#pragma once

#include "app/settings/channels.h"

#include <QByteArray>
#include <QByteArrayList>
#include <array>

/// The messages exchanged with a TOHO TRM-10C recorder, as bytes.
///
/// One reading: the read commands, each in a write of its own, then one reply, then the closing
/// command. The reply, offsets from its start:
///   0 22 characters, not read | 22 a slot of 27 characters per channel, then CR LF
/// A slot ends with the channel's value in 10 characters; the rest of it is not read.
namespace trm10c
{
inline constexpr std::size_t kChannels = channels::kCount;
inline constexpr qsizetype kHeaderSize = 22;
inline constexpr qsizetype kSlotSize = 27;
inline constexpr qsizetype kReplySize = kHeaderSize + qsizetype(kChannels) * kSlotSize + 2;

using Values = std::array<double, kChannels>; // degrees Celsius, channel 01 first

/// The commands that ask for all channels, in the order sent. Only some begin with ESC, as the
/// recorder requires.
QByteArrayList readCommands();

/// Ends the dialogue after a complete reply.
QByteArray closeCommand();

/// The values of a reply of kReplySize bytes. A field without a leading number is 0.
Values channelValues(const QByteArray &reply);
} // namespace trm10c
