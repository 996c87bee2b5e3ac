// model.cpp: a scene put together: street, vehicles, actors, shake, windscreen, sensor, coder.
#include "scene/model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "scene/actors/cast.h"
#include "scene/labels.h"

namespace stopngo {
namespace {

constexpr double kVehicleToLine_m = 5.4;  // from its rear: a car's length and a metre
constexpr int kSubExposures = 4;          // of a street that is driven along
constexpr double kInstant_s = 0.008;      // in which what crosses 10 m ahead moves by 5 pixels

PicturePart PartOf(const SceneOptions& o, const SceneWindow& window) {
  if (window.width == 0) return {0, 0, o.width, o.height, o.width, o.height};
  return {window.x, window.y, window.width, window.height, o.width, o.height};
}

/// A window is the picture of a camera whose principal point lies elsewhere.
Camera CameraOf(const SceneOptions& options, const PicturePart& part) {
  return Displaced(WaitingCamera(options), {-static_cast<double>(part.x), -static_cast<double>(part.y)});
}

bool Crosses(ActorKind kind) {
  switch (kind) {
    case ActorKind::kCrossing:
    case ActorKind::kCrossingNear:
    case ActorKind::kCrossingQueue:
    case ActorKind::kTurning:
    case ActorKind::kPedestrian:
    case ActorKind::kCrowd:
    case ActorKind::kCyclist:
    case ActorKind::kDrivingIn:
    case ActorKind::kStream:
      return true;
    default:
      return false;
  }
}

bool SamePose(const Camera& a, const Camera& b) {
  return a.x_m == b.x_m && a.z_m == b.z_m && a.sine == b.sine && a.horizon == b.horizon;
}

}  // namespace

SceneModel::SceneModel(const SceneOptions& o, const SceneWindow& w)
    : options(o),
      part(PartOf(o, w)),
      camera_(CameraOf(o, part)),
      path_(o.ego, o.ego_turning, o.length_s),
      world_(o.world, o.light, camera_.height_m, o.lead.distance_m + kVehicleToLine_m, path_.Travelled(),
             o.seed),
      shake_(o.camera, o.seed),
      windscreen_(o.windscreen, o.light, part, o.seed),
      sensor_(o.sensor, part, o.seed),
      coder_(o.sensor, part),
      sheet_(part.width, part.height),
      light_(static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height)) {
  std::vector<VehicleOptions> vehicles;
  if (o.lead_present) vehicles.push_back(o.lead);
  vehicles.insert(vehicles.end(), o.others.begin(), o.others.end());
  // Half as many texels again as pixels keep the edges of texels from showing; a lorry's are too many to
  // paint for every scene.
  const double most_texels = std::min(0.4 * o.width * o.height, 1.5e6);
  for (std::size_t i = 0; i < vehicles.size(); i++) {
    const double nearest = std::max(2.0, vehicles[i].distance_m);
    const Texels texels{std::min(1.5 * camera_.focal / nearest, 520.0), most_texels};
    auto vehicle = std::make_unique<DrivenVehicle>(vehicles[i], texels, o.seed + i);
    if (o.lead_present && i == 0) lead_ = vehicle.get();
    actors_.push_back(std::move(vehicle));
    actor_kinds_.emplace_back();
  }
  for (const ActorOptions& actor : o.actors) {
    Actors made = MakeActors(actor.kind, MakeStage(actor.event_s), actor.seed);
    for (auto& one : made) {
      actors_.push_back(std::move(one));
      actor_kinds_.emplace_back(actor.kind);
    }
  }
  for (const OverlayOptions& overlay : o.overlays) {
    overlays_.push_back(MakeOverlay(overlay.kind, MakeStage(overlay.event_s), overlay.seed));
  }
}

Stage SceneModel::MakeStage(double event_s) const {
  Stage stage;
  stage.width = options.width;
  stage.height = options.height;
  stage.window_x = part.x;
  stage.window_y = part.y;
  stage.focal = camera_.focal;
  stage.length_s = options.length_s;
  stage.event_s = event_s;
  stage.night = options.light.Night();
  if (lead_ != nullptr) {
    stage.lead_half_width = lead_->Body().HalfWidth();
    stage.lead_height = lead_->Body().Height();
    stage.lead_offset = options.lead.offset_m;
    stage.lead_distance = [this](double time_s) { return lead_->RearAt(time_s).pose.z; };
  } else {
    stage.lead_present = false;
    stage.lead_distance = [place_m = options.lead.distance_m](double) { return place_m; };
  }
  return stage;
}

Camera SceneModel::Pose(double time_s) const {
  Camera camera = camera_;
  path_.Place(camera, time_s);
  return camera;
}

/// The time of what a frame shows, and the number of that picture.
double SceneModel::Shown(std::int64_t frame, std::int64_t& index) const {
  const double time_s = static_cast<double>(frame) / options.fps;
  index = frame;
  if (options.sensor.source_fps <= 0 || options.sensor.source_fps >= options.fps) {
    return time_s;
  }
  index = static_cast<std::int64_t>(time_s * options.sensor.source_fps + 1e-6);
  return static_cast<double>(index) / options.sensor.source_fps;
}

void SceneModel::UpdateStill(double time_s, const Camera& camera) {
  resting_ = path_.Rests(time_s);
  if (!resting_ || (still_ && SamePose(still_->camera, camera))) {
    return;
  }
  const auto street = [this](const Camera& seen, int row, std::span<float> light) {
    world_.Row(seen, row, light);
  };
  still_ =
      std::make_unique<Still>(Still{camera, Layer(camera, part.width, part.height, Margin(), street), {}});
  still_->actors.resize(actors_.size());
}

void SceneModel::DrawStreet(double time_s, double open_s, Offset shake) {
  if (resting_) {
    for (int row = 0; row < part.height; row++) {
      still_->street.Row(row, shake, Line(row));
    }
    return;
  }
  std::array<Camera, kSubExposures> cameras;
  for (int i = 0; i < kSubExposures; i++) {
    const double at = time_s + open_s * ((i + 0.5) / kSubExposures - 0.5);
    cameras[static_cast<std::size_t>(i)] = Displaced(Pose(at), shake_.At(at, path_.Speed(at)));
  }
  std::fill(light_.begin(), light_.end(), 0.0F);
  for (int row = 0; row < part.height; row++) {
    for (int i = 0; i < kSubExposures; i++) {
      world_.RowPart(cameras[static_cast<std::size_t>(i)], row, i, Line(row));
    }
  }
}

std::vector<SceneModel::Item> SceneModel::Items(double time_s, const Camera& camera) const {
  std::vector<Item> items;
  for (std::size_t i = 0; i < actors_.size(); i++) {
    const auto distance = actors_[i]->Distance(time_s, camera);
    if (distance) items.push_back({*distance, i});
  }
  std::stable_sort(items.begin(), items.end(),
                   [](const Item& a, const Item& b) { return a.distance > b.distance; });
  return items;
}

void SceneModel::DrawActor(std::size_t index, double time_s, const Camera& shaken, Offset shake) {
  const Actor& actor = *actors_[index];
  if (resting_ && actor.Rests(time_s)) {
    DrawKept(index, time_s, shake);
  } else {
    actor.Draw(time_s, shaken, options.light, sheet_);
  }
  actor.DrawLamps(time_s, shaken, options.light, sheet_);
  sheet_used_ = true;
}

void SceneModel::DrawKept(std::size_t index, double time_s, Offset shake) {
  FlushSheet();
  std::optional<Cutout>& cutout = still_->actors[index];
  if (!cutout) {
    std::optional<Sheet> sheet;
    cutout.emplace(still_->camera, part.width, part.height, Margin(),
                   [&](const Camera& camera, int row, std::span<float> light) {
                     if (!sheet) {
                       const int rows = 2 * (part.height + 2 * (Margin() + 1));
                       sheet.emplace(static_cast<int>(light.size()), rows);
                       actors_[index]->Draw(time_s, camera, options.light, *sheet);
                     }
                     sheet->DrawRow(row, light);
                   });
  }
  for (int row = 0; row < part.height; row++) cutout->DrawRow(row, shake, Line(row));
}

std::span<float> SceneModel::Line(int row) {
  const auto width = static_cast<std::size_t>(part.width);
  return std::span<float>(light_).subspan(static_cast<std::size_t>(row) * width, width);
}

int SceneModel::Margin() const { return static_cast<int>(std::ceil(shake_.Reach())); }

void SceneModel::FlushSheet() {
  if (!sheet_used_) {
    return;
  }
  for (int row = 0; row < part.height; row++) {
    sheet_.DrawRow(row, Line(row));
  }
  sheet_.Clear();
  sheet_used_ = false;
}

void SceneModel::Compose(double time_s, double open_s) {
  const Camera camera = Pose(time_s);
  const Offset shake = shake_.At(time_s, path_.Speed(time_s));
  const Camera shaken = Displaced(camera, shake);
  DrawStreet(time_s, open_s, shake);
  for (const Item& item : Items(time_s, camera)) DrawActor(item.actor, time_s, shaken, shake);
  FlushSheet();
}

/// How many pictures make up a frame: what moves is smeared while the shutter is open. While we drive, the
/// street is smeared by itself (see DrawStreet), and most of the rest goes along with us.
int SceneModel::Instants(double time_s) const {
  bool moves = false;
  for (std::size_t i = 0; i < actors_.size(); i++) {
    moves = moves || (!actors_[i]->Rests(time_s) && actor_kinds_[i] != ActorKind::kBystanders &&
                      actors_[i]->Distance(time_s, Pose(time_s)));
  }
  if (!resting_ || !moves) return 1;
  return std::max(1, static_cast<int>(std::ceil(options.sensor.shutter_s / kInstant_s)));
}

void SceneModel::Gather(double time_s) {
  const int instants = Instants(time_s);
  const double open_s = options.sensor.shutter_s / instants;
  gathered_.assign(light_.size(), 0);
  for (int i = 0; i < instants; i++) {
    Compose(time_s + open_s * (i + 0.5 - 0.5 * instants), open_s);
    for (std::size_t at = 0; at < light_.size(); at++) gathered_[at] += light_[at];
  }
  const float share = 1 / static_cast<float>(instants);
  for (std::size_t at = 0; at < light_.size(); at++) light_[at] = share * gathered_[at];
}

void SceneModel::Render(std::int64_t frame, std::span<std::uint8_t> luma) {
  std::int64_t index = 0;
  const double time_s = Shown(frame, index);
  UpdateStill(time_s, Pose(time_s));
  Gather(time_s);
  windscreen_.Draw(light_);
  for (const auto& overlay : overlays_) {
    overlay->Draw(time_s, sheet_);
    sheet_used_ = true;
  }
  FlushSheet();
  sensor_.Expose(light_, time_s, index, luma);
  coder_.Code(time_s, luma);
}

std::vector<LabelSpan> SceneModel::Labels(double length_s) const {
  constexpr double kStep_s = 0.1;
  SceneEvents events{path_.Moving(length_s), {}, {}, length_s};
  if (lead_ != nullptr) events.lead_moving = lead_->Moving(length_s);
  for (std::size_t actor = 0; actor < actors_.size(); actor++) {
    if (!actor_kinds_[actor] || !Crosses(*actor_kinds_[actor])) continue;
    for (int i = 0; i * kStep_s < length_s; i++) {
      const double at_s = i * kStep_s;
      if (actors_[actor]->Distance(at_s, Pose(at_s))) events.crossing.push_back({at_s, at_s + kStep_s});
    }
  }
  return MakeLabels(events);
}

}  // namespace stopngo
