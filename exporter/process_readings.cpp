#include "exporter/process_readings.hpp"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/resource.h>

#include <unistd.h>

namespace xpon::exporter {
namespace {

const double start_time = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();

double seconds_of(const timeval& time) {
    constexpr double microsecond = 1e-6;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * microsecond;
}

} // namespace

void read_process(Samples& samples) {
    samples.add(Metric::build_info, 1, samples.labels({XPON_VERSION}));
    samples.add(Metric::process_start, start_time);
    if (rusage usage{}; getrusage(RUSAGE_SELF, &usage) == 0) {
        samples.add(Metric::process_cpu, seconds_of(usage.ru_utime) + seconds_of(usage.ru_stime));
    }
    std::ifstream pages("/proc/self/statm");
    if (double size = 0, resident = 0; pages >> size >> resident) {
        samples.add(Metric::process_memory, resident * static_cast<double>(sysconf(_SC_PAGESIZE)));
    }
    std::error_code error;
    const std::filesystem::directory_iterator descriptors("/proc/self/fd", error);
    if (!error) {
        samples.add(Metric::process_descriptors, static_cast<double>(std::distance(begin(descriptors), {})));
    }
}

} // namespace xpon::exporter
