// skeleton.cpp: gait, pedalling, and the limbs that they move.
#include "scene/actors/skeleton.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/common/exact_math.h"

namespace stopngo {
namespace {

constexpr double kTurn = 6.28318530717959;

/// Forward and upward from a joint: length at an angle from straight down, in turns, positive forward.
Vector3 Hang(Vector3 joint, double length, double turns) {
  return joint + Vector3{0, -length * SineOfTurns(turns + 0.25), length * SineOfTurns(turns)};
}

/// The knee between hip and foot, bent forward, of two bones that reach from one to the other.
Vector3 Knee(Vector3 hip, Vector3 foot, double thigh, double shank) {
  const double dy = foot.height - hip.height;
  const double dz = foot.z - hip.z;
  const double distance = std::clamp(std::sqrt(dy * dy + dz * dz), 0.05, thigh + shank - 1e-3);
  const double along = (distance * distance + thigh * thigh - shank * shank) / (2 * distance);
  const double out = std::sqrt(std::max(0.0, thigh * thigh - along * along));
  return {hip.x, hip.height + (along * dy + out * dz) / distance, hip.z + (along * dz - out * dy) / distance};
}

void DrawLeg(const Person& person, Vector3 hip, double swing, double flex, const Limner& limner) {
  const double h = person.height;
  const Vector3 knee = Hang(hip, 0.25 * h, swing);
  const Vector3 ankle = Hang(knee, 0.24 * h, swing - flex);
  limner.Limb(hip, knee, 0.046 * h * person.girth, person.trousers);
  limner.Limb(knee, ankle, 0.034 * h * person.girth, 0.92 * person.trousers);
  limner.Limb(ankle, ankle + Vector3{0, -0.01, 0.08 * h}, 0.02 * h, 30);
}

void DrawArm(const Person& person, Vector3 shoulder, double swing, const Limner& limner) {
  const double h = person.height;
  const Vector3 elbow = Hang(shoulder, 0.17 * h, swing);
  const Vector3 hand = Hang(elbow, 0.16 * h, swing + 0.05);
  limner.Limb(shoulder, elbow, 0.032 * h * person.girth, 0.88 * person.coat);
  limner.Limb(elbow, hand, 0.026 * h, 0.84 * person.coat);
  limner.Ball(hand, 0.025 * h, 0.03 * h, person.skin);
}

void DrawProp(const Person& person, double travelled, const Limner& limner) {
  const double h = person.height;
  switch (person.prop) {
    case Prop::kNone:
      break;
    case Prop::kBag:
      limner.Ball({0.13 * h, 0.38 * h, 0.02}, 0.13, 0.17, person.prop_tone);
      break;
    case Prop::kUmbrella:
      limner.Limb({0.08, 0.6 * h, 0.1}, {0.05, 1.2 * h, 0.05}, 0.012, 40);
      limner.Ball({0.05, 1.05 * h, 0.05}, 0.52, 0.32, person.prop_tone, true);
      break;
    case Prop::kPram:
      limner.Limb({0, 0.58 * h, 0.3}, {0, 0.5, 0.6}, 0.02, 50);
      limner.Limb({0, 0.55, 0.62}, {0, 0.55, 1.05}, 0.17, person.prop_tone);
      limner.Ball({0, 0.66, 0.72}, 0.26, 0.32, 0.8 * person.prop_tone, true);
      limner.Wheel({0, 0.14, 0.58}, 0.14, 0.03, travelled / (0.14 * kTurn), 35);
      limner.Wheel({0, 0.14, 1.08}, 0.14, 0.03, travelled / (0.14 * kTurn), 35);
      break;
    case Prop::kSuitcase:
      limner.Limb({0.1, 0.45 * h, -0.12}, {0.1, 0.62, -0.38}, 0.015, 50);
      limner.Limb({0.1, 0.60, -0.40}, {0.1, 0.14, -0.52}, 0.16, person.prop_tone);
      break;
  }
}

}  // namespace

Person DrawPerson(Random& random) {
  Person person{};
  const bool child = random.Below(6) == 0;
  person.height = child ? random.Uniform(1.05, 1.45) : random.Uniform(1.55, 1.93);
  person.coat = random.Uniform(28, 200);
  person.trousers = random.Uniform(25, 120);
  person.skin = random.Uniform(75, 175);
  person.hair = random.Uniform(25, 130);
  person.prop_tone = random.Uniform(25, 205);
  person.girth = random.Uniform(0.9, 1.3);
  person.phase = random.Uniform(0, 1);
  constexpr std::array<Prop, 10> kProps{Prop::kNone, Prop::kNone,    Prop::kNone, Prop::kNone,
                                        Prop::kBag,  Prop::kBag,     Prop::kBag,  Prop::kUmbrella,
                                        Prop::kPram, Prop::kSuitcase};
  person.prop = kProps[random.Below(child ? 6 : 10)];
  return person;
}

void Limner::Limb(Vector3 from, Vector3 to, double radius_m, double tone) const {
  const auto a = Find(from);
  const auto b = Find(to);
  if (a && b) {
    DrawLimb({a->column, a->row, radius_m * a->scale}, {b->column, b->row, radius_m * b->scale},
             {gain_ * tone}, sheet_);
  }
}

void Limner::Ball(Vector3 middle, double half_width_m, double half_height_m, double tone, bool upper) const {
  if (const auto spot = Find(middle)) {
    DrawOval({spot->column, spot->row, half_width_m * spot->scale, half_height_m * spot->scale, -1e9,
              upper ? spot->row : 1e9},
             {gain_ * tone}, sheet_);
  }
}

void Limner::Wheel(Vector3 hub, double radius_m, double thickness_m, double turns, double tone) const {
  const auto spot = Find(hub);
  if (!spot) {
    return;
  }
  const double narrow = std::max(0.12, std::fabs(pose_.sine));
  DrawRing({spot->column, spot->row, radius_m * narrow * spot->scale, radius_m * spot->scale},
           thickness_m * spot->scale, {gain_ * tone}, sheet_);
  for (int spoke = 0; spoke < 3; spoke++) {
    const double angle = turns + spoke / 6.0;
    const Vector3 out{0, -radius_m * SineOfTurns(angle), radius_m * SineOfTurns(angle + 0.25)};
    Limb(hub - out, hub + out, 0.006, tone + 60);
  }
}

void Limner::Shadow(double half_length_m, double half_width_m) const {
  const auto spot = Find({0, 0, 0});
  if (!spot) {
    return;
  }
  const double along = std::fabs(pose_.sine);
  const double across = std::fabs(pose_.cosine);
  // A metre ahead is seen that much shorter on the road.
  const double flat = camera_.height_m * spot->scale / camera_.focal;
  DrawOval({spot->column, spot->row, (half_length_m * along + half_width_m * across) * spot->scale,
            (half_length_m * across + half_width_m * along) * flat * spot->scale},
           {8, 0.5, 1 + 0.15 * spot->scale}, sheet_);
}

void Limner::Lamp(Vector3 place, double radius_m, double tone) const {
  if (const auto spot = Find(place)) {
    DrawGlow({spot->column, spot->row, radius_m * spot->scale}, tone, sheet_);
  }
}

void DrawWalker(const Person& person, double travelled, double stride, double time_s, const Limner& limner) {
  const double h = person.height;
  const double gait = travelled / (0.82 * h) + person.phase;
  const double swing = SineOfTurns(gait);
  const double sway = (1 - stride) * 0.02 * SineOfTurns(0.23 * time_s + person.phase);
  const double bob = 0.012 * h * stride * SineOfTurns(2 * gait + 0.1);
  const Vector3 hips{sway, 0.51 * h + bob, 0.5 * sway};
  const Vector3 neck{1.6 * sway, 0.82 * h + bob, 0.03 * h * stride + sway};
  limner.Shadow(0.30, 0.24);
  const Vector3 side{0.055 * h, 0, 0};
  const Vector3 shoulder{0.105 * h, 0, 0};
  const double reach = 0.075 * stride;  // turns
  const auto flex = [&](double at) { return stride * 0.11 * std::max(0.0, SineOfTurns(gait + at)); };
  DrawArm(person, neck - shoulder, reach * swing, limner);
  DrawLeg(person, hips - side, -reach * swing, flex(0.72) + 0.01, limner);
  DrawLeg(person, hips + side, reach * swing, flex(0.22) + 0.01, limner);
  limner.Limb(hips, neck + Vector3{0, -0.04 * h, 0}, 0.088 * h * person.girth, person.coat);
  limner.Limb(neck - shoulder, neck + shoulder, 0.045 * h, person.coat);
  limner.Limb(hips + Vector3{0, 0.06, 0}, neck + Vector3{0, -0.1 * h, 0}, 0.02 * h, person.coat + 22);
  const Vector3 head{neck.x, 0.925 * h + bob, neck.z + 0.015 * h};
  limner.Limb(neck, head, 0.032 * h, person.skin);
  limner.Ball(head, 0.055 * h, 0.07 * h, person.skin);
  limner.Ball(head + Vector3{0, 0.012 * h, -0.015 * h}, 0.058 * h, 0.064 * h, person.hair, true);
  const bool pushes = person.prop == Prop::kPram;
  DrawArm(person, neck + shoulder, pushes ? 0.1 : -reach * swing, limner);
  DrawProp(person, travelled, limner);
}

void DrawRider(const Person& person, bool motor, double travelled, double lamps, const Limner& limner) {
  const double radius = motor ? 0.31 : 0.34;
  const double reach = motor ? 0.68 : 0.52;
  const double turns = travelled / (radius * kTurn);
  const Vector3 crank{0, 0.28, -0.05};
  const Vector3 seat{0, motor ? 0.82 : 0.93, -0.22};
  const Vector3 bar{0, motor ? 0.98 : 1.03, 0.42};
  limner.Shadow(reach + 0.2, 0.25);
  limner.Wheel({0, radius, -reach}, radius, motor ? 0.12 : 0.035, turns, 30);
  limner.Wheel({0, radius, reach}, radius, motor ? 0.12 : 0.035, turns, 30);
  // One turn of the pedals moves a bicycle on by 5 m or so.
  const double pedal = motor ? 0.6 : travelled / 5;
  const auto leg = [&](double side, double at) {
    const Vector3 foot = crank + Vector3{side, -0.17 * SineOfTurns(at), 0.17 * SineOfTurns(at + 0.25)};
    const Vector3 hip = seat + Vector3{side, 0.04, 0};
    const Vector3 knee = Knee(hip, foot, 0.44, 0.46);
    limner.Limb(hip, knee, 0.075 * person.girth, person.trousers);
    limner.Limb(knee, foot, 0.055 * person.girth, 0.9 * person.trousers);
    limner.Limb(foot, foot + Vector3{0, 0, 0.12}, 0.035, 30);
  };
  leg(-0.1, pedal + 0.5);
  if (motor) {
    limner.Limb({0, 0.5, -0.45}, {0, 0.62, 0.35}, 0.17, person.prop_tone);
    limner.Limb({0, 0.78, -0.65}, {0, 0.76, -0.1}, 0.07, 30);
    limner.Limb({0, radius, reach}, bar, 0.05, 90);
    limner.Lamp({0, 0.85, 0.55}, 0.3, 120 * lamps);
  } else {
    const Vector3 rear{0, radius, -reach};
    const Vector3 head{0, 0.85, 0.36};
    for (const auto& [from, to] : {std::pair{rear, crank}, std::pair{rear, seat}, std::pair{seat, crank},
                                   std::pair{crank, head}, std::pair{seat, head}}) {
      limner.Limb(from, to, 0.02, person.prop_tone);
    }
    limner.Limb({0, radius, reach}, bar, 0.02, person.prop_tone);
  }
  const Vector3 shoulder = seat + Vector3{0, 0.52, motor ? 0.2 : 0.34};
  limner.Limb(seat + Vector3{0, 0.05, 0}, shoulder, 0.13 * person.girth, person.coat);
  leg(0.1, pedal);
  const Vector3 elbow = 0.5 * (shoulder + bar) + Vector3{0, -0.06, -0.04};
  limner.Limb(shoulder, elbow, 0.055, 0.85 * person.coat);
  limner.Limb(elbow, bar, 0.045, 0.85 * person.coat);
  const Vector3 face = shoulder + Vector3{0, 0.22, 0.08};
  limner.Ball(face, 0.1, 0.12, person.skin);
  limner.Ball(face + Vector3{0, 0.02, -0.01}, 0.125, 0.13, person.hair, !motor);
}

}  // namespace stopngo
