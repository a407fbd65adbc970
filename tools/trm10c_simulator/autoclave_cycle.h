#pragma once

#include <array>
#include <chrono>
#include <random>
#include <vector>

/// The temperatures of consecutive steam sterilisations: three vacuum and steam pulses, heat-up,
/// plateau, exhaust, drying, a pause. Each of the six sensors has its own lag, offset and noise.
/// The same seed yields the same readings.
class AutoclaveCycle
{
public:
    using Seconds = std::chrono::duration<double>;
    using Readings = std::array<double, 6>; // degrees Celsius

    /// `plateau` in degrees Celsius: a hotter one is shorter (121: 20 min, 134: 7 min).
    AutoclaveCycle(double plateau, unsigned seed);

    /// The sensors' readings at a time since the first cycle began. Each call adds new noise.
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
