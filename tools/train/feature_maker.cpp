// feature_maker.cpp: makes the files of a folder of features.
#include "train/feature_maker.h"

#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "base/output_file.h"
#include "base/parallel.h"
#include "features/clip_keys.h"
#include "features/clip_record.h"
#include "features/fault.h"
#include "features/feature_file.h"
#include "train/clip_passes.h"

namespace stopngo {
namespace {

class Maker {
 public:
  Maker(const Module& module, const Settings& settings, const FeatureChoice& choice)
      : module_(module), settings_(settings), choice_(choice), recipe_(settings, choice) {}

  /// Leaves out a file that is there, and refuses one that is another one.
  void Add(const PlannedFile& file) {
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(file.path, ignored))) {
      RefuseOther(FeatureFile(file.path), file.clips);
      return;
    }
    files_.push_back({&file, std::vector<std::string>(file.clips.size()), file.clips.size()});
    for (std::size_t i = 0; i < file.clips.size(); i++) work_.push_back({files_.size() - 1, i});
  }

  [[nodiscard]] std::size_t Files() const { return files_.size(); }
  [[nodiscard]] std::size_t Clips() const { return work_.size(); }

  void Work(int jobs, const std::function<void()>& step) {
    InParallel(work_.size(), jobs, [&](std::size_t i) {
      Unfinished& file = files_[work_[i].file];
      std::string record = RecordFor(file.plan->clips[work_[i].clip]);
      const std::lock_guard lock(finishing_);
      file.records[work_[i].clip] = std::move(record);
      if (--file.missing == 0) {
        WriteFile(file.plan->path, FeatureFileBytes(recipe_, file.records));
        file.records.clear();
      }
      step();
    });
  }

 private:
  struct Unfinished {
    const PlannedFile* plan;
    std::vector<std::string> records;
    std::size_t missing;
  };
  struct Piece {
    std::size_t file, clip;
  };

  std::string RecordFor(const Clip& clip) {
    try {
      ClipFeatures features = CollectFeatures(module_, settings_, clip, choice_);
      features.key = keys_.Of(clip, settings_.rate);
      if (!clip.IsScene()) features.labels.clear();  // the manifest's may be put right
      return RecordOf(features);
    } catch (const Failure& failure) {
      throw NamingClip(clip, failure);
    }
  }

  void RefuseOther(const FeatureFile& file, std::span<const Clip> clips) {
    constexpr const char* kRemedy = "; remove it, or choose another folder";
    bool same = file.Records().size() == clips.size();
    for (std::size_t i = 0; same && i < clips.size(); i++) {
      same = file.Key(file.Records()[i]) == keys_.Of(clips[i], settings_.rate);
    }
    if (!same) throw Failure(file.Path() + ": is there, with features of other clips" + kRemedy);
    for (std::size_t i = 0; i < clips.size(); i++) {
      const FoundFeatures found = FindIn(file, file.Records()[i], clips[i], settings_, choice_);
      if (found.fault) throw Failure(*found.fault);
    }
    FeatureRecipe made = file.Recipe();
    made.scene_version = recipe_.scene_version;  // of no matter to recordings
    if (made != recipe_) {
      throw Failure(file.Path() + ": is there, made with other options" + kRemedy);
    }
  }

  const Module& module_;
  const Settings& settings_;
  const FeatureChoice& choice_;
  FeatureRecipe recipe_;
  ClipKeys keys_;
  std::vector<Unfinished> files_;
  std::vector<Piece> work_;
  std::mutex finishing_;
};

}  // namespace

std::size_t MakeFeatures(const Module& module, const Settings& settings, const FeatureChoice& choice,
                         std::span<const PlannedFile> files, int jobs,
                         const std::function<void(std::size_t)>& total, const std::function<void()>& step) {
  Maker maker(module, settings, choice);
  for (const PlannedFile& file : files) maker.Add(file);
  total(maker.Clips());
  maker.Work(jobs, step);
  return maker.Files();
}

}  // namespace stopngo
