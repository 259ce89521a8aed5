#include "StBenchSeries.h"

#include <algorithm>
#include <cmath>

double StBenchSeries::percentile(double p) const {
    if (_samples.empty())
        return 0.0;
    std::vector<double> sorted(_samples);
    std::sort(sorted.begin(), sorted.end());
    if (p >= 100.0)
        return sorted.back();
    // An even count has two middles: the median is their mean.
    if (p == 50.0 && sorted.size() % 2 == 0)
        return (sorted[sorted.size() / 2 - 1] + sorted[sorted.size() / 2]) / 2.0;
    size_t rank = static_cast<size_t>(std::ceil(p / 100.0 * static_cast<double>(sorted.size())));
    return sorted[rank == 0 ? 0 : rank - 1];
}

double StBenchSeries::min() const {
    return _samples.empty() ? 0.0 : *std::min_element(_samples.begin(), _samples.end());
}

double StBenchSeries::max() const {
    return _samples.empty() ? 0.0 : *std::max_element(_samples.begin(), _samples.end());
}

nlohmann::json StBenchSeries::toJson() const {
    return {{"median", median()},
            {"min", min()},
            {"max", max()},
            {"p99", percentile(99.0)},
            {"samples", _samples}};
}
