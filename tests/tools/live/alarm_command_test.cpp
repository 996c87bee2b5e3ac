// alarm_command_test.cpp: a command at every alarm: what it is told, and that nothing it does stops the run.
#include "live/alarm_command.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "live/command_line.h"
#include "support/failure_text.h"
#include "support/temporary_folder.h"

namespace stopngo::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

Alarm SomeAlarm() {
  return {"street \"5\"", 150, 6.25,
          0.5F,           7,   std::chrono::system_clock::time_point(milliseconds(1234567890123))};
}

/// What was said while a command took one alarm, or several at once.
struct Course {
  AlarmCommand::Counts counts;
  std::string said;
  double took_s = 0;  ///< with the end
};

Course RunCommand(const std::vector<std::string>& argv, int alarms = 1, double limit_s = 10, int jobs = 2,
                  milliseconds wait = milliseconds(0)) {
  testing::internal::CaptureStderr();
  const auto begin = steady_clock::now();
  Course course;
  {
    AlarmCommand command(argv, jobs, limit_s);
    for (int i = 0; i < alarms; ++i) command.Start(SomeAlarm());
    std::this_thread::sleep_for(wait);
    command.Finish();
    course.counts = command.Told();
  }
  course.took_s = std::chrono::duration<double>(steady_clock::now() - begin).count();
  course.said = testing::internal::GetCapturedStderr();
  return course;
}

TEST(AlarmCommandWords, AreAShells) {
  const auto words = [](const char* text) { return CommandWords("--on-alarm", text); };
  const std::vector<std::string> expected{"a b", "c\"d\\e\\n", "", "f g", "h'i"};
  EXPECT_EQ(words(R"( 'a b'  "c\"d\\e\n" '' f\ g "h'i" )"), expected);
  EXPECT_EQ(words(R"(a'b'"c"\d)"), std::vector<std::string>{"abcd"});
  for (const auto& [text, reason] : {std::pair{"a 'b", "the quote ' is not closed"},
                                     {"a \"b\\\"", "the quote \" is not closed"},
                                     {"  ", "names no program"},
                                     {"'' a", "names no program"},
                                     {"a \\", "nothing follows the backslash"}}) {
    const char* const refused = text;
    ExpectWords(FailureOf([&] { words(refused); }), {"--on-alarm", reason});
  }
}

TEST(AlarmCommandProgram, IsLookedForBeforeTheRun) {
  const TemporaryFolder folder;
  const std::string plain = folder.File("plain", "text");
  const auto fault = [](const std::string& program) {
    return FailureOf([&] { RequireProgram("--on-alarm", program); });
  };
  EXPECT_EQ(fault("sh"), "no failure");
  EXPECT_EQ(fault("/bin/sh"), "no failure");
  ExpectWords(fault("no-such-program-anywhere"), {"--on-alarm", "no-such-program-anywhere", "PATH"});
  ExpectWords(fault(plain), {plain, "Permission denied"});
  ExpectWords(fault(folder / "none"), {"No such file"});
  ExpectWords(fault("/bin/"), {"Is a directory"});
}

TEST(AlarmCommand, IsToldTheAlarmAndIsAStranger) {
  const TemporaryFolder folder;
  const std::string out = folder / "out";
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  const int open_file = dup(STDERR_FILENO);
  const Course course = RunCommand(
      {"sh", "-c",
       "{ cat; echo "
       "\"$STOPNGO_INPUT|$STOPNGO_FRAME|$STOPNGO_TIME|$STOPNGO_SCORE|$STOPNGO_COUNTER|$STOPNGO_WHEN\"; "
       "echo $((0x$(sed -n 's/^SigIgn:\t//p' /proc/self/status) & 0x7fffffff)); test -e /proc/$$/fd/" +
           std::to_string(open_file) + " || echo closed; } > \"$1\"; echo printed",
       "sh", out});
  close(open_file);
  std::signal(SIGPIPE, before);
  EXPECT_EQ(ReadFile(out),
            "{\"type\":\"alarm\",\"input\":\"street \\\"5\\\"\",\"frame\":150,\"time\":6.25,\"score\":0.5,"
            "\"counter\":7,\"when\":\"2009-02-13T23:31:30.123Z\"}\n"
            "street \"5\"|150|6.25|0.5|7|2009-02-13T23:31:30.123Z\n0\nclosed\n");
  EXPECT_EQ(course.said, "printed\n") << "what it prints goes to standard error";
  EXPECT_EQ(course.counts.started, 1);
  EXPECT_EQ(course.counts.failed, 0);
}

TEST(AlarmCommand, FaultsAreSaidAndCounted) {
  const std::string when = "2009-02-13T23:31:30.123Z";
  for (const auto& [argv, words] : {std::pair<std::vector<std::string>, std::vector<std::string>>{
                                        {"/no/such"}, {"/no/such", when, "No such file"}},
                                    {{"sh", "-c", "exit 3"}, {"sh", when, "exit code 3"}},
                                    {{"sh", "-c", "kill -9 $$"}, {when, "signal 9"}}}) {
    const Course course = RunCommand(argv);
    ExpectWords(course.said, words);
    EXPECT_EQ(course.counts.failed, 1) << course.said;
  }
  const Course many = RunCommand({"sleep", "0.5"}, 5);
  EXPECT_EQ(many.counts.started, 2);
  EXPECT_EQ(many.counts.left_out, 3);
  ExpectWords(many.said, {"not started", when, "2 of it still run"});
}

// The shell would leave its child behind if only it were ended; the last one does not heed SIGTERM.
TEST(AlarmCommand, TakesNoLongerThanItsLimit) {
  const TemporaryFolder folder;
  const std::string late = folder / "late";
  const Course slow =
      RunCommand({"sh", "-c", "(sleep 1.5; echo > \"$1\") & wait", "sh", late}, 1, 0.2, 1, milliseconds(600));
  ExpectWords(slow.said, {"takes too long"});
  EXPECT_EQ(slow.counts.failed, 1);
  const Course deaf = RunCommand({"sh", "-c", "trap '' TERM; while :; do sleep 0.1; done"}, 1, 60);
  ExpectWords(deaf.said, {"still runs at the end"});
  EXPECT_EQ(deaf.counts.failed, 1);
  EXPECT_GE(deaf.took_s, 3.5) << "what is left of its time, and the time after SIGTERM";
  EXPECT_LT(deaf.took_s, 15);
  EXPECT_NE(access(late.c_str(), F_OK), 0);
}

}  // namespace
}  // namespace stopngo::test
