// stroke.h: plain shapes painted straight into the picture, with edges that are smooth at any size.
#pragma once

#include "scene/paint/sheet.h"

namespace stopngo {

struct Dab {
  double column;
  double row;
  double radius;  ///< pixels; may be less than one
};

struct Ink {
  double tone;  ///< grey level
  double opacity = 1;
  double blur = 1;  ///< pixels over which the edge fades
};

/// A limb: thick from one end to the other, round at both.
void DrawLimb(const Dab& from, const Dab& to, const Ink& ink, Sheet& sheet);

/// An ellipse along the picture's axes, of the part from a row on upwards or downwards if limits are given.
struct Oval {
  double column;
  double row;
  double half_width;
  double half_height;
  double first_row = -1e9;
  double end_row = 1e9;
};

void DrawOval(const Oval& oval, const Ink& ink, Sheet& sheet);

/// The outline of an ellipse.
void DrawRing(const Oval& oval, double thickness, const Ink& ink, Sheet& sheet);

/// Light around a lamp: tone is added in the middle.
void DrawGlow(const Dab& middle, double tone, Sheet& sheet);

}  // namespace stopngo
