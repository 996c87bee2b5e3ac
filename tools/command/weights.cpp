// weights.cpp: stopngo weights: shows what is in a weights file and whether it is what its sidecar says.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "base/file_register.h"
#include "base/output_file.h"
#include "base/results.h"
#include "command/options/number_checks.h"
#include "command/subcommand.h"
#include "evaluate/network_figures.h"
#include "evaluate/network_picture.h"
#include "host/common/failure.h"
#include "host/common/sha256.h"
#include "host/common/text.h"
#include "host/settings/sidecar.h"
#include "host/settings/weights_file.h"

namespace stopngo {
namespace {

constexpr const char* kWeightsFooter =
    R"(A weight is near zero when it cannot move a sum by a step of the activation table; a hidden node's sum
has the range that histograms which can occur give it, * where the table is flat at an end of it. Cells are told by row and column, from 0, and
"before" is the frame before. The counts are those of the sidecar, FILE.json, where there is one.
Numbers that are not finite, or a sidecar that does not match, end with exit code 1.

Examples:
  stopngo weights weights.bin
  stopngo weights weights.bin --picture layer.png
  stopngo weights small.bin --inputs 80 --hiddens 8 --json)";

constexpr std::uint64_t kDefaultInputs = 160;
constexpr std::uint64_t kDefaultHiddens = 16;
constexpr std::size_t kDefaultColumns = 5;

using Json = nlohmann::ordered_json;

struct WeightsArguments {
  std::string file;
  std::optional<std::uint64_t> inputs, hiddens;
  std::size_t columns = kDefaultColumns;
  std::string picture;
  bool json = false;
};

std::string NameOf(const StrongWeight& strong, std::size_t columns) {
  constexpr const char* kDirections[] = {"down", "right", "up", "left"};
  return std::string(strong.current ? "" : "before ") + std::to_string(strong.cell / columns) + "," +
         std::to_string(strong.cell % columns) + " " + kDirections[strong.direction];
}

class Inspection {
 public:
  explicit Inspection(const WeightsArguments& arguments)
      : arguments_(arguments),
        sidecar_(ReadSidecar(arguments.file)),
        network_(Read()),
        sha256_(Sha256(WeightsBytes(network_))),
        layers_(LayersOf(network_)),
        nodes_(NodesOf(network_)) {
    FindFaults();
  }

  void Run() const {
    if (!arguments_.picture.empty()) WritePicture();
    arguments_.json ? TellJson() : Tell();
    if (!faults_.empty()) throw Failure(faults_);
  }

 private:
  [[nodiscard]] Network Read() const {
    const std::uint64_t inputs = arguments_.inputs.value_or(sidecar_ ? sidecar_->inputs : kDefaultInputs);
    const std::uint64_t hiddens = arguments_.hiddens.value_or(sidecar_ ? sidecar_->hiddens : kDefaultHiddens);
    const bool told = sidecar_ && !arguments_.inputs && !arguments_.hiddens;
    return ReadNumbers(arguments_.file, inputs, hiddens,
                       told ? SidecarPath(arguments_.file) : "--inputs, --hiddens");
  }

  void FindFaults() {
    for (const LayerFigures& layer : layers_) {
      if (layer.not_finite == 0) continue;
      faults_ += (faults_.empty() ? arguments_.file + ": numbers that are not finite: " : ", ") +
                 std::to_string(layer.not_finite) + " among the " + layer.name;
    }
    if (const std::string fault = FaultOf(network_); faults_.empty() && !fault.empty()) {
      faults_ = arguments_.file + ": " + fault;
    }
    if (!sidecar_) return;
    try {
      CheckSidecar(arguments_.file, *sidecar_, network_);
    } catch (const Failure& failure) {
      sidecar_matches_ = false;
      faults_ += (faults_.empty() ? "" : "; ") + std::string(failure.what());
    }
  }

  void WritePicture() const {
    const Canvas picture = DrawNetwork(network_, arguments_.columns);
    OutputFile file(arguments_.picture);
    picture.WritePng(file.Stream());
    file.Commit();
  }

  [[nodiscard]] const char* SidecarState() const {
    if (!sidecar_) return "none";
    return sidecar_matches_ ? "matches" : "differs";
  }

  [[nodiscard]] std::size_t Bytes() const { return network_.numbers.size() * sizeof(float); }

  void Tell() const {
    WriteResult(arguments_.file + ": " +
                Print("%zu inputs, %zu hidden nodes, %zu numbers, %zu bytes", network_.inputs,
                      network_.hiddens, network_.numbers.size(), Bytes()));
    WriteResult("SHA-256 " + sha256_);
    WriteResult("sidecar " + SidecarPath(arguments_.file) + ": " + SidecarState());
    WriteResult("");
    WriteResult("                count       least    greatest   mean size   near zero");
    for (const LayerFigures& layer : layers_) {
      if (layer.count == layer.not_finite) continue;
      WriteResult(Print("%-14s %6zu  %10.4f  %10.4f  %10.4f  %8.1f %%", layer.name, layer.count,
                        double{layer.least}, double{layer.greatest}, layer.mean_magnitude,
                        100.0 * static_cast<double>(layer.near_zero) / static_cast<double>(layer.count)));
    }
    WriteResult("");
    WriteResult("node    output      bias   sum from       to   strongest");
    for (const NodeFigures& node : nodes_) TellNode(node);
  }

  void TellNode(const NodeFigures& node) const {
    std::string line =
        Print("%4zu  %8.3f  %8.3f   %8.2f %8.2f %s", node.index, double{node.output_weight},
              double{node.bias}, node.least_sum, node.greatest_sum, node.CanSaturate() ? "*" : " ");
    for (const StrongWeight& strong : node.strongest) {
      if (strong.weight != 0) {
        line += " " + NameOf(strong, arguments_.columns) + Print(" %+.2f ", double{strong.weight});
      }
    }
    line.erase(line.find_last_not_of(' ') + 1);
    WriteResult(line);
  }

  void TellJson() const {
    Json layers = Json::array();
    for (const LayerFigures& layer : layers_) {
      layers.push_back({{"name", layer.name},
                        {"count", layer.count},
                        {"not_finite", layer.not_finite},
                        {"least", layer.least},
                        {"greatest", layer.greatest},
                        {"mean_magnitude", layer.mean_magnitude},
                        {"near_zero", layer.near_zero}});
    }
    Json nodes = Json::array();
    for (const NodeFigures& node : nodes_) {
      Json strongest = Json::array();
      for (const StrongWeight& strong : node.strongest) {
        strongest.push_back({{"input", NameOf(strong, arguments_.columns)}, {"weight", strong.weight}});
      }
      nodes.push_back({{"node", node.index},
                       {"output_weight", node.output_weight},
                       {"bias", node.bias},
                       {"sum", {node.least_sum, node.greatest_sum}},
                       {"can_saturate", node.CanSaturate()},
                       {"strongest", strongest}});
    }
    const Json object{{"file", arguments_.file},
                      {"inputs", network_.inputs},
                      {"hiddens", network_.hiddens},
                      {"bytes", Bytes()},
                      {"sha256", sha256_},
                      {"sidecar", SidecarState()},
                      {"layers", layers},
                      {"nodes", nodes}};
    WriteResult(JsonLine(object));
  }

  const WeightsArguments& arguments_;
  std::optional<Sidecar> sidecar_;
  Network network_;
  std::string sha256_;
  std::array<LayerFigures, 4> layers_;
  std::vector<NodeFigures> nodes_;
  std::string faults_;
  bool sidecar_matches_ = true;
};

class WeightsCommand : public Subcommand {
 public:
  explicit WeightsCommand(CLI::App& app);
  void Complete() override {
    FileRegister files;
    files.Reads(arguments_.file, "the weights");
    files.Reads(SidecarPath(arguments_.file), "the weights' sidecar");
    files.Writes(arguments_.picture, "--picture");
    inspection_.emplace(arguments_);
  }
  void Run() override { inspection_->Run(); }

 private:
  WeightsArguments arguments_;
  std::optional<Inspection> inspection_;
};

WeightsCommand::WeightsCommand(CLI::App& app) {
  app.footer(kWeightsFooter);
  app.add_option("FILE", arguments_.file, "weights file")->required()->type_name("FILE");
  app.add_option("--inputs", arguments_.inputs, "inputs of the network, two frames' features")
      ->type_name("N");
  app.add_option("--hiddens", arguments_.hiddens, "its hidden nodes")->type_name("N");
  app.add_option("--columns", arguments_.columns, "cells in a row of the grid that the inputs look at")
      ->type_name("N")
      ->check(AboveZero())
      ->capture_default_str();
  app.add_option("--picture", arguments_.picture, "PNG picture of the first layer, a panel a hidden node")
      ->type_name("FILE");
  app.add_flag("--json", arguments_.json, "one line of JSON");
}

}  // namespace

std::unique_ptr<Subcommand> DeclareWeights(CLI::App& app) { return std::make_unique<WeightsCommand>(app); }

}  // namespace stopngo
