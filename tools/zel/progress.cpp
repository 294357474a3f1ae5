#include "tools/zel/progress.hpp"

#include <signal.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "tools/zel/console.hpp"
#include "tools/zel/json.hpp"

namespace zel::tool {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 500ms;  // shorter tasks need no bar
constexpr auto kBarPeriod = 100ms;
constexpr auto kEventPeriod = 500ms;
constexpr unsigned kBarWidth = 24;

struct Scale {
  double divisor;
  const char *name;
};

Scale scale_for(double bytes) {
  constexpr std::array<Scale, 5> kScales{
      {{0x1p40, "TiB"}, {0x1p30, "GiB"}, {0x1p20, "MiB"}, {0x1p10, "KiB"}, {1, "B"}}};
  return *std::find_if(kScales.begin(), kScales.end() - 1,
                       [bytes](const Scale &scale) { return bytes >= scale.divisor; });
}

/// Two or three digits are enough to watch.
std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, value < 10 && value != std::floor(value) ? "%.1f" : "%.0f",
                value);
  return text;
}

std::string bytes_text(double bytes) {
  const Scale scale = scale_for(bytes);
  return number(bytes / scale.divisor) + " " + scale.name;
}

/// "1.2/1.9 GiB", "1.2 GiB", "3/10 primes".
std::string amount_text(const Moment &moment) {
  const auto done = static_cast<double>(moment.done);
  const bool one = moment.total.value_or(moment.done) == 1;
  const Scale scale = moment.unit == Unit::kPrimes ? Scale{1, one ? "prime" : "primes"}
                      : moment.unit == Unit::kKeys
                          ? Scale{1, one ? "key" : "keys"}
                          : scale_for(static_cast<double>(moment.total.value_or(moment.done)));
  std::string text = number(done / scale.divisor);
  if (moment.total) text += "/" + number(static_cast<double>(*moment.total) / scale.divisor);
  return text + " " + scale.name;
}

std::string duration_text(double seconds) {
  const auto whole = static_cast<unsigned long>(std::ceil(seconds));
  if (whole < 60) return std::to_string(whole) + " s";
  char text[48];
  if (whole < 3600) {
    std::snprintf(text, sizeof text, "%lu:%02lu min", whole / 60, whole % 60);
  } else {
    std::snprintf(text, sizeof text, "%lu:%02lu h", whole / 3600, whole / 60 % 60);
  }
  return text;
}

double fraction_of(const Moment &moment) {
  if (*moment.total == 0) return 1;
  return std::min(1.0, static_cast<double>(moment.done) / static_cast<double>(*moment.total));
}

}  // namespace

std::string bar_line(const Moment &moment, unsigned columns) {
  std::string line = moment.task;
  if (moment.total) {
    const double fraction = fraction_of(moment);
    const auto filled = static_cast<std::size_t>(fraction * kBarWidth);
    char percent[8];
    std::snprintf(percent, sizeof percent, "%3.0f", std::floor(fraction * 100));
    line += std::string(" ") + percent + "% [" + std::string(filled, '#') +
            std::string(kBarWidth - filled, '-') + "] " + amount_text(moment);
  } else if (moment.done != 0) {
    line += "  " + amount_text(moment);
  }
  if (moment.rate > 0 && moment.unit == Unit::kBytes) {
    line += "  " + bytes_text(moment.rate) + "/s";
  }
  if (moment.total && moment.rate > 0 && *moment.total >= moment.done) {
    line +=
        "  ETA " + duration_text(static_cast<double>(*moment.total - moment.done) / moment.rate);
  } else {
    line += "  " + duration_text(moment.seconds);
  }
  if (line.size() >= columns) line.resize(columns == 0 ? 0 : columns - 1);
  return line;
}

Progress::Progress(ProgressMode mode, std::string task, std::optional<std::uint64_t> total,
                   Unit unit)
    : mode_(mode == ProgressMode::kAuto && !console::is_terminal() ? ProgressMode::kNever : mode),
      task_(std::move(task)),
      total_(total),
      unit_(unit) {
  if (mode_ == ProgressMode::kNever) return;
  if (mode_ != ProgressMode::kAuto) show("start");
  // Signals stay with the main thread.
  sigset_t all;
  sigset_t before;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &before);
  thread_ = std::thread([this] { run(); });
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Progress::~Progress() { end(false); }

void Progress::finish() { end(true); }

std::string Progress::summary() const {
  const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
  const auto done = static_cast<double>(done_.load());
  char time[32];
  std::snprintf(time, sizeof time, " in %.3g s", seconds);
  if (unit_ != Unit::kBytes) return amount_text({task_, unit_, done_, {}, 0, 0}) + time;
  return bytes_text(done) + time + ", " + bytes_text(done / seconds) + "/s";
}

void Progress::run() {
  std::unique_lock lock(mutex_);
  if (mode_ == ProgressMode::kAuto && wake_.wait_for(lock, kPatience, [this] { return ending_; })) {
    return;
  }
  const auto period = mode_ == ProgressMode::kJson ? kEventPeriod : kBarPeriod;
  if (mode_ == ProgressMode::kAuto) show("progress");
  while (!wake_.wait_for(lock, period, [this] { return ending_; }))
    show("progress");
}

void Progress::show(const char *event) {
  const Moment moment = now();
  if (mode_ != ProgressMode::kJson) {
    console::status(bar_line(moment, console::columns()));
    return;
  }
  Json line = {{"event", event}, {"task", task_}, {"done", moment.done}};
  line["total"] = total_ ? Json(*total_) : Json(nullptr);
  line["unit"] = unit_ == Unit::kBytes ? "bytes" : unit_ == Unit::kPrimes ? "primes" : "keys";
  line["seconds"] = moment.seconds;
  if (moment.rate > 0) line["rate"] = moment.rate;
  console::line(to_text(line));
}

Moment Progress::now() {
  const auto time = Clock::now();
  const auto done = done_.load(std::memory_order_relaxed);
  // The rate follows the last second or so: each sample moves it by its share of that time.
  const double span = std::chrono::duration<double>(time - rate_time_).count();
  if (span > 0.05) {
    const double sample = static_cast<double>(done - rate_done_) / span;
    const double weight = rate_ == 0 ? 1 : std::min(1.0, span);
    rate_ += weight * (sample - rate_);
    rate_time_ = time;
    rate_done_ = done;
  }
  return {task_, unit_, done, total_, std::chrono::duration<double>(time - start_).count(), rate_};
}

void Progress::end(bool success) {
  if (ended_) return;
  ended_ = true;
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  wake_.notify_one();
  thread_.join();
  if (mode_ == ProgressMode::kJson) {
    show(success ? "done" : "failed");
    return;
  }
  if (mode_ == ProgressMode::kAlways && success) {
    console::line(bar_line(now(), console::columns()));
    return;
  }
  console::status({});
}

}  // namespace zel::tool
