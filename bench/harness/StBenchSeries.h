#ifndef _ST_BENCH_SERIES_H_
#define _ST_BENCH_SERIES_H_

#include <nlohmann/json.hpp>

#include <vector>

// The samples of one figure, in the order they were taken.
class StBenchSeries {
public:
    void add(double sample) { _samples.push_back(sample); }
    bool empty() const { return _samples.empty(); }
    size_t size() const { return _samples.size(); }

    double median() const { return percentile(50.0); }
    // Nearest-rank percentile.
    double percentile(double p) const;
    double min() const;
    double max() const;

    const std::vector<double> &samples() const { return _samples; }

    nlohmann::json toJson() const;

private:
    std::vector<double> _samples;
};

#endif
