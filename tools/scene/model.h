// model.h: the parts of a scene, and how a frame is put together from them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/label.h"
#include "scene/lens/coder.h"
#include "scene/lens/sensor.h"
#include "scene/lens/shake.h"
#include "scene/lens/windscreen.h"
#include "scene/motion/ego_path.h"
#include "scene/paint/layer.h"
#include "scene/paint/sheet.h"
#include "scene/recipe/kinds.h"
#include "scene/recipe/recipe.h"
#include "scene/space/offset.h"
#include "scene/space/window.h"
#include "scene/stage/actor.h"
#include "scene/street/world.h"
#include "scene/vehicle/driven_vehicle.h"

namespace stopngo {

struct SceneModel {
  SceneModel(const SceneOptions& options, const SceneWindow& window);

  void Render(std::int64_t frame, std::span<std::uint8_t> luma);
  /// Where our own vehicle is at a time, without the camera's shake.
  [[nodiscard]] Camera Pose(double time_s) const;
  [[nodiscard]] std::vector<LabelSpan> Labels(double length_s) const;

  SceneOptions options;
  PicturePart part;

 private:
  /// What stands still seen from one place: kept from frame to frame.
  struct Still {
    Camera camera;
    Layer street;
    std::vector<std::optional<Cutout>> actors;  ///< of those that rest, as they are at the beginning
  };
  /// Something of a frame, to be drawn in order of distance.
  struct Item {
    double distance;
    std::size_t actor;
  };

  /// Adds up in light_ what the shutter lets in around a time.
  void Gather(double time_s);
  [[nodiscard]] int Instants(double time_s) const;
  /// Fills light_ with what is seen at a time. open_s: how long the shutter stays open around it.
  void Compose(double time_s, double open_s);
  void DrawStreet(double time_s, double open_s, Offset shake);
  [[nodiscard]] std::vector<Item> Items(double time_s, const Camera& camera) const;
  void DrawActor(std::size_t index, double time_s, const Camera& shaken, Offset shake);
  void DrawKept(std::size_t index, double time_s, Offset shake);
  void FlushSheet();
  /// A row of light_.
  [[nodiscard]] std::span<float> Line(int row);
  /// Pixels by which what is kept may be displaced.
  [[nodiscard]] int Margin() const;
  void UpdateStill(double time_s, const Camera& camera);
  [[nodiscard]] Stage MakeStage(double event_s) const;
  [[nodiscard]] double Shown(std::int64_t frame, std::int64_t& index) const;

  Camera camera_;
  EgoPath path_;
  World world_;
  Shake shake_;
  Windscreen windscreen_;
  Sensor sensor_;
  Coder coder_;
  Actors actors_;                                      ///< the vehicle ahead first, when there is one
  const DrivenVehicle* lead_ = nullptr;                ///< one of them
  std::vector<std::optional<ActorKind>> actor_kinds_;  ///< vehicles of our own lane have none
  std::vector<std::unique_ptr<ScreenEffect>> overlays_;
  std::unique_ptr<Still> still_;
  bool resting_ = false;
  Sheet sheet_;
  bool sheet_used_ = false;
  std::vector<float> light_;
  std::vector<float> gathered_;
};

}  // namespace stopngo
