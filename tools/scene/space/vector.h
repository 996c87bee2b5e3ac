// vector.h: points and directions in a scene's space.
#pragma once

namespace stopngo {

/// x to the right of the waiting camera, height above the road, z ahead, in metres.
struct Vector3 {
  double x;
  double height;
  double z;
};

inline Vector3 operator+(Vector3 a, Vector3 b) { return {a.x + b.x, a.height + b.height, a.z + b.z}; }
inline Vector3 operator-(Vector3 a, Vector3 b) { return {a.x - b.x, a.height - b.height, a.z - b.z}; }
inline Vector3 operator*(double s, Vector3 a) { return {s * a.x, s * a.height, s * a.z}; }
inline double Dot(Vector3 a, Vector3 b) { return a.x * b.x + a.height * b.height + a.z * b.z; }
inline Vector3 Cross(Vector3 a, Vector3 b) {
  return {a.height * b.z - a.z * b.height, a.z * b.x - a.x * b.z, a.x * b.height - a.height * b.x};
}

}  // namespace stopngo
