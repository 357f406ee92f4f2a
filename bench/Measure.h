#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// Seconds that `work` takes.
[[nodiscard]] double secondsOf(const std::function<void()> &work);
[[nodiscard]] double median(std::vector<double> values);

// Runs `work(i)` for i in 0 … count - 1, `parallel` of them at a time.
void runMany(int count, int parallel, const std::function<void(int)> &work);

// One contender of a comparison: something that does the same work as the others.
struct Contender {
  std::string name;
  std::function<void()> run;
  std::function<void()> cleanUp = [] {}; // not timed
};

enum class WarmUp { yes, no }; // whether there is a round that does not count

// Runs all contenders in turn, `rounds` times after a warm-up, so that all meet the same load of the machine.
// Returns the median seconds of each.
[[nodiscard]] std::vector<double> compare(const std::vector<Contender> &contenders, int rounds,
                                          WarmUp warmUp = WarmUp::yes);

// Prints the time of each contender, and that of the first one as a multiple of it. `perRun` is how many
// units of work one run contains.
void printTimes(const std::vector<Contender> &contenders, const std::vector<double> &seconds, int perRun = 1);

// A new, empty folder below `parent`, removed with its content at the end of the program's scope.
class Scratch {
public:
  explicit Scratch(const std::filesystem::path &parent);
  ~Scratch();
  Scratch(const Scratch &) = delete;
  Scratch &operator=(const Scratch &) = delete;
  [[nodiscard]] const std::filesystem::path &path() const { return path_; }
  void empty() const;

private:
  std::filesystem::path path_;
};

} // namespace bench
