#pragma once

#include <QStringList>

/// The recorder's six channels, in two diagrams of three. Channels count from 1, diagrams from 0.
namespace channels
{
inline constexpr int kDiagrams = 2;
inline constexpr int kPerDiagram = 3;
inline constexpr int kCount = kDiagrams * kPerDiagram;

/// The recorder's number for a diagram's channel.
constexpr int channelOf(int diagram, int channelInDiagram)
{
    return diagram * kPerDiagram + channelInDiagram;
}

/// The recorder's numbers of a diagram's channels as captions show them: "1,2,3".
inline QString listOf(int diagram)
{
    QStringList numbers;
    for (int channel = 1; channel <= kPerDiagram; ++channel)
        numbers += QString::number(channelOf(diagram, channel));
    return numbers.join(QLatin1Char(','));
}

/// "Diagrama1" or "Diagrama2": the diagram's name, and the prefix of its settings keys.
inline QString diagramName(int diagram)
{
    return QStringLiteral("Diagrama%1").arg(diagram + 1);
}

/// "Senzor1" to "Senzor6": a channel's column in the storage file.
inline QString storageColumn(int channel)
{
    return QStringLiteral("Senzor%1").arg(channel);
}
} // namespace channels
