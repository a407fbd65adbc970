#include "tools/trm10c_simulator/autoclave_cycle.h"

#include <algorithm>
#include <cmath>
#include <numbers>

using Seconds = AutoclaveCycle::Seconds;

namespace
{

struct SensorPlace {
    double offset; // degrees Celsius
    Seconds lag;
};

// Chamber above, chamber below, steam inlet; two probes in the load, the drain.
constexpr std::array<SensorPlace, 6> kSensors{{{0.0, Seconds(0)},
                                               {-0.4, Seconds(6)},
                                               {0.3, Seconds(2)},
                                               {-0.7, Seconds(25)},
                                               {-0.2, Seconds(18)},
                                               {-1.0, Seconds(35)}}};

constexpr double kNoise = 0.12; // standard deviation, degrees Celsius
constexpr double kRoom = 24;
constexpr Seconds kPlateauBegin{630};
constexpr double kHotPlateau = 130; // from here on the short hold is enough

Seconds holdTime(double plateau)
{
    return Seconds(plateau >= kHotPlateau ? 7 * 60 : 20 * 60);
}

} // namespace

AutoclaveCycle::AutoclaveCycle(double plateau, unsigned seed) : m_random(seed), m_noise(0, kNoise)
{
    const Seconds end = kPlateauBegin + holdTime(plateau);
    m_course = {{Seconds(0), kRoom},
                {Seconds(90), 72},
                {Seconds(150), 51},
                {Seconds(240), 97},
                {Seconds(300), 70},
                {Seconds(390), 107},
                {Seconds(450), 84},
                {kPlateauBegin - Seconds(50), plateau + 1.2},
                {kPlateauBegin, plateau + 0.6},
                {end, plateau + 0.4},
                {end + Seconds(120), 99},
                {end + Seconds(300), 66},
                {end + Seconds(600), 38},
                {end + Seconds(780), kRoom}};
}

double AutoclaveCycle::chamberTemperature(Seconds sinceStart) const
{
    const Seconds inCycle(std::fmod(std::max(sinceStart.count(), 0.0), duration().count()));
    const auto next =
        std::upper_bound(m_course.begin(), m_course.end(), inCycle,
                         [](Seconds at, const Point &point) { return at < point.at; });
    const Point &from = *(next - 1);
    const double share = (inCycle - from.at) / (next->at - from.at);
    const double eased = (1 - std::cos(share * std::numbers::pi)) / 2;
    return from.temperature + (next->temperature - from.temperature) * eased;
}

AutoclaveCycle::Readings AutoclaveCycle::read(Seconds sinceStart)
{
    Readings readings{};
    std::transform(
        kSensors.begin(), kSensors.end(), readings.begin(), [&](const SensorPlace &sensor) {
            return chamberTemperature(sinceStart - sensor.lag) + sensor.offset + m_noise(m_random);
        });
    return readings;
}
