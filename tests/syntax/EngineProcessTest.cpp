#include <csignal>
#include <fcntl.h>
#include <poll.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "host/Recorder.h"
#include "support/TempFolder.h"
#include "syntax/EngineProcess.h"
#include "syntax/EngineRun.h"
#include "vexutils/TickCount.h"

class EngineProcess : public testing::Test {
 protected:
  // A shell script in the engine's place: $1 is the syntax file, $2 the output file.
  std::string Engine(const std::string& script) {
    std::string name = folder / "engine";
    WriteBytes(name, "#!/bin/sh\n" + script + "\n");
    chmod(name.c_str(), 0700);
    return name;
  }
  bool Start(const std::string& script) {
    WriteBytes(syntax, "syntax");
    return process.Start(Engine(script), syntax, output);
  }
  // False when the engine still runs after a long time.
  bool End() {
    const std::int64_t end = GetTickCount() + 20000;
    while (process.Wait(100)) {
      if (GetTickCount() > end) return false;
    }
    return true;
  }
  void WaitUntilItSpeaks() {
    pollfd said{process.Descriptor(), POLLIN, 0};
    ASSERT_EQ(poll(&said, 1, 20000), 1);
  }
  TempFolder folder;
  const std::string syntax = folder / "a b.TRK";
  const std::string output = folder / "a b.OUT";
  CEngineProcess process;
};

TEST_F(EngineProcess, ResultsByExitCodeAndOutput) {
  const struct {
    const char* script;
    int result;
    const char* reason;
  } cases[] = {
      {"cp \"$1\" \"$2\"", 0, ""},
      {"cp \"$1\" \"$2\"; exit 1", 1, ""},
      {"exit 0", -1, "The engine ended with code 0 and wrote no output"},
      {"echo no such command >&2; exit 1", -1,
       "The engine ended with code 1 and wrote no output: no such command"},
      {"cp \"$1\" \"$2\"; echo >&2 'progress: 10'; kill -SEGV $$", 128 + SIGSEGV,
       "The engine was ended by a signal: Segmentation fault"},
      {"kill -SEGV $$", -1, "The engine was ended by a signal: Segmentation fault"},
  };
  for (const auto& c : cases) {
    std::remove(output.c_str());
    WriteBytes(syntax, "syntax");
    CEngineProcess one;
    ASSERT_TRUE(one.Start(Engine(c.script), syntax, output)) << one.Reason();
    while (one.Wait(1000)) {
    }
    EXPECT_EQ(one.Result(), c.result) << c.script;
    EXPECT_EQ(one.Reason(), c.reason) << c.script;
    EXPECT_EQ(ReadBytes(output), c.result < 0 ? "" : "syntax");
  }
}

TEST_F(EngineProcess, CannotBeStarted) {
  const std::string plain = folder / "plain";
  WriteBytes(plain, "no program");
  for (const std::string& name : {folder / "absent", plain, folder.Path()}) {
    CEngineProcess one;
    EXPECT_FALSE(one.Start(name, syntax, output)) << name;
    EXPECT_EQ(one.Reason().find(name + ": "), 0U) << one.Reason();
    EXPECT_FALSE(one.Poll());
    EXPECT_LT(one.Result(), 0);
  }
}

TEST_F(EngineProcess, TellsItsProgress) {
  const std::string gate = folder / "gate";
  const struct {
    const char* said;
    double progress;
  } steps[] = {{"progress: 25", 0.25}, {"progress:0", 0},      {"  progress:  99.5  ", 0.995},
               {"progress: 1e9", 1},   {"progress: -5", 1},    {"progress: x", 1},
               {"something else", 1},  {"progress: 50 %", 0.5}};
  ASSERT_EQ(mkfifo(gate.c_str(), 0600), 0);
  ASSERT_TRUE(Start("while read -r line; do echo \"$line\" >&2; done <'" + gate + "'"));
  EXPECT_LT(process.Progress(), 0);
  const int lines = open(gate.c_str(), O_WRONLY);
  for (const auto& step : steps) {
    const std::string line = std::string("'") + step.said + "\n";
    ASSERT_EQ(write(lines, line.data() + 1, line.size() - 1),
              static_cast<ssize_t>(line.size() - 1));
    WaitUntilItSpeaks();
    ASSERT_TRUE(process.Poll());
    EXPECT_EQ(process.Progress(), step.progress) << step.said;
  }
  close(lines);
  EXPECT_TRUE(End());
}

TEST_F(EngineProcess, NeverWaitsForUsHoweverMuchItWrites) {
  ASSERT_TRUE(
      Start("head -c 30000000 /dev/zero >&2; yes no newline follows | tr -d '\\n' | "
            "head -c 3000000 >&2; head -c 3000000 /dev/zero; cp \"$1\" \"$2\""));
  EXPECT_TRUE(End());
  EXPECT_EQ(process.Result(), 0);
}

TEST_F(EngineProcess, PollDoesNotWait) {
  ASSERT_TRUE(Start("sleep 30"));
  const std::int64_t begin = GetTickCount();
  for (int i = 0; i < 100; ++i) ASSERT_TRUE(process.Poll());
  EXPECT_TRUE(process.Wait(100));
  EXPECT_LT(GetTickCount() - begin, 10000);
  EXPECT_LT(process.Result(), 0);
}

TEST_F(EngineProcess, CancelIsAskedForFirst) {
  ASSERT_TRUE(
      Start("trap 'echo stopped >\"$2\"; exit 1' INT; echo ready >&2; "
            "while :; do sleep 0.05; done"));
  WaitUntilItSpeaks();
  process.Cancel();
  EXPECT_TRUE(End());
  EXPECT_EQ(process.Result(), 1);
  EXPECT_EQ(ReadBytes(output), "stopped\n");
  EXPECT_EQ(process.Reason().find("The run was cancelled"), 0U);
}

TEST_F(EngineProcess, CancelKillsWhatDoesNotStop) {
  ASSERT_TRUE(Start("trap '' INT; echo $$ >&2; sleep 600 & sleep 600"));
  WaitUntilItSpeaks();
  const std::int64_t begin = GetTickCount();
  process.Cancel(300);
  EXPECT_TRUE(process.Wait(50));
  EXPECT_TRUE(End());
  EXPECT_GE(GetTickCount() - begin, 300);
  EXPECT_LT(process.Result(), 0);
}

// A child that the engine leaves behind keeps the other end of the pipe open.
TEST_F(EngineProcess, EndsWithTheEngineNotWithItsChildren) {
  ASSERT_TRUE(Start("sleep 5 & cp \"$1\" \"$2\""));
  const std::int64_t begin = GetTickCount();
  EXPECT_TRUE(End());
  EXPECT_LT(GetTickCount() - begin, 4000);
  EXPECT_EQ(process.Result(), 0);
}

TEST_F(EngineProcess, TheDestructorEndsIt) {
  std::string line;
  {
    CEngineProcess one;
    ASSERT_TRUE(one.Start(Engine("echo $$ >\"$1\"; trap '' INT TERM; sleep 600"), syntax, output));
    while (ReadBytes(syntax).find('\n') == std::string::npos) one.Wait(20);
  }
  EXPECT_NE(kill(std::stoi(ReadBytes(syntax)), 0), 0);
}

TEST_F(EngineProcess, InheritsNoFileOfOurs) {
  const int open = ::open("/dev/null", O_RDONLY);  // without close-on-exec
  ASSERT_TRUE(Start("ls /proc/self/fd >\"$2\""));
  EXPECT_TRUE(End());
  // Beside the three standard files, `ls` itself has the folder open.
  EXPECT_EQ(ReadBytes(output), "0\n1\n2\n3\n");
  close(open);
}

TEST_F(EngineProcess, IsFoundByVariableSettingOrPlace) {
  const std::string engine = Engine("exit 0");
  CString reason;
  unsetenv("VEX_ENGINE");
  EXPECT_EQ(FindEngine(engine, reason), engine);
  EXPECT_EQ(FindEngine(folder / "absent", reason), "");
  EXPECT_NE(reason.find(folder / "absent"), std::string::npos);
  setenv("VEX_ENGINE", engine.c_str(), 1);
  EXPECT_EQ(FindEngine(folder / "absent", reason), engine);
  setenv("VEX_ENGINE", folder.Path().c_str(), 1);  // a folder; never passed over for the setting
  EXPECT_EQ(FindEngine(engine, reason), "");
  EXPECT_NE(reason.find("Is a directory"), std::string::npos) << reason;
  setenv("VEX_ENGINE", "", 1);
  EXPECT_EQ(FindEngine(engine, reason), engine);
  const auto beside = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "torvik";
  if (FindEngine("", reason) != beside.string()) {
    EXPECT_NE(reason.find(beside.string()), std::string::npos) << reason;
  }
  unsetenv("VEX_ENGINE");
}

TEST_F(EngineProcess, RunsUnderAProgressThatMayCancelIt) {
  CRecorder host;
  CString reason;
  WriteBytes(syntax, "syntax");
  auto progress = host.StartProgress("run");
  EXPECT_EQ(RunEngine(Engine("cp \"$1\" \"$2\""), syntax, output, {}, *progress, reason), 0);
  EXPECT_EQ(reason, "");
  std::remove(output.c_str());
  host.cancelAtStep = host.progressSteps + 1;
  const std::int64_t begin = GetTickCount();
  EXPECT_LT(RunEngine(Engine("sleep 600"), syntax, output, {}, *progress, reason), 0);
  EXPECT_EQ(reason, "The run was cancelled");
  EXPECT_LT(GetTickCount() - begin, CEngineProcess::kGrace);
  // Names without a folder are those of the one that is given; the engine's own is ours.
  EXPECT_EQ(RunEngine(Engine("cp \"$1\" plain; cp plain \"$2\""), syntax, output, folder.Path(),
                      *host.StartProgress("run"), reason),
            0);
  EXPECT_EQ(ReadBytes(folder / "plain"), "syntax");
  std::remove(output.c_str());
  EXPECT_LT(RunEngine(folder / "absent", syntax, output, {}, *progress, reason), 0);
  EXPECT_NE(reason, "");
}
