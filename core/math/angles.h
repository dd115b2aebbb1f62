// Internal: the degree and radian conversions of the matrix and rotation code.
#ifndef ORVANE_CORE_MATH_ANGLES_H
#define ORVANE_CORE_MATH_ANGLES_H

#include <cmath>

// Degrees to radians in double precision, so sines and cosines of whole angles are exact to
// float precision (sin 90 is exactly 1).
constexpr double kRadiansPerDegree = 0.017453292519943295;
// Radians back to degrees, in float like the angles it converts, and in double where the
// conversion works on doubles.
constexpr float kDegreesPerRadian = 57.29578f;
constexpr double kDegreesPerRadianDouble = 57.29577951308232;

inline double ToRadians(float degrees) {
    return degrees * kRadiansPerDegree;
}
inline float ToDegrees(float radians) {
    return radians * kDegreesPerRadian;
}

// The sine and cosine of an angle in degrees, computed in double and rounded to float.
struct SinCos {
    float s;
    float c;
};
inline SinCos SinCosDegrees(float degrees) {
    const double radians = ToRadians(degrees);
    return {static_cast<float>(std::sin(radians)), static_cast<float>(std::cos(radians))};
}

#endif
