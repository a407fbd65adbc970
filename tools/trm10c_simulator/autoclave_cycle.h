#pragma once

#include <array>
#include <chrono>
#include <random>
#include <vector>

/// The temperatures of one steam sterilisation after the other: three vacuum and steam pulses, heat
/// up, plateau, exhaust, drying, a pause. Six sensors see it a little differently: some lag behind,
/// all are off by their own tenths and shake. The same seed gives the same readings.
class AutoclaveCycle
{
public:
    using Seconds = std::chrono::duration<double>;
    using Readings = std::array<double, 6>; // degrees Celsius

    /// `plateau` in degrees Celsius: the hotter, the shorter it is held (121: 20 min, 134: 7 min).
    AutoclaveCycle(double plateau, unsigned seed);

    /// What the sensors show that long after the first cycle began. Each call is a new reading.
    Readings read(Seconds sinceStart);

    Seconds duration() const { return m_course.back().at; }

private:
    struct Point {
        Seconds at;
        double temperature;
    };
    double chamberTemperature(Seconds sinceStart) const;

    std::vector<Point> m_course;
    std::mt19937 m_random;
    std::normal_distribution<double> m_noise;
};
