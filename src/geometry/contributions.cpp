#include "geometry/contributions.h"

#include "kernels/windowed_sinc.h"

#include <algorithm>
#include <cmath>

namespace kzb {

namespace {

int64_t room_for(int64_t count) {
    constexpr auto together = static_cast<int64_t>(kernels::weights_together);
    return (count + together - 1) / together * together;
}

} // namespace

Contributions::Contributions(const ScaleKernel &kernel, int32_t outputs, int32_t inputs)
    : kernel_(kernel), inputs_(inputs), scale_(static_cast<double>(outputs) / inputs) {
    int64_t count = 0;
    for (int32_t i = 0; i < outputs; ++i) count += room_for(candidates(i).count);
    Buffer<kernels::ContributionList> lists(outputs);
    Buffer<double> weights(count);
    if (!lists || !weights) return;
    lists_ = std::move(lists);
    weights_ = std::move(weights);
    const double *free = weights_.get();
    for (int32_t i = 0; i < outputs; ++i) {
        lists_[static_cast<size_t>(i)].weights = free;
        free += room_for(candidates(i).count);
    }
}

Contributions::Candidates Contributions::candidates(int32_t output) const {
    const double centre = (output + 0.5) / scale_;
    const double reach = scale_ < 1 ? kernel_.support / scale_ : kernel_.support;
    // Truncated, an enlarging filter's too: rounding outward adds only pixels that weigh 0.
    const double first = std::max(std::trunc(centre - reach), 0.0);
    const double last = std::min(std::trunc(centre + reach), inputs_ - 1.0);
    if (first > last) return {centre, 0, 0};
    return {centre, static_cast<int32_t>(first), static_cast<int64_t>(last - first) + 1};
}

namespace {

constexpr double smallest_weight = 0x1p-200, smallest_sum = 0x1p-60, largest_sum = 0x1p60;
constexpr double most_cancellation = 0x1p20;

bool is_ordinary(const kernels::ContributionList &list) {
    double magnitude = 0;
    for (int32_t k = 0; k < list.count; ++k) {
        const double weight = std::abs(list.weights[k]);
        if (weight != 0 && weight < smallest_weight) return false;
        magnitude += weight;
    }
    const double sum = std::abs(list.sum);
    return sum > smallest_sum && magnitude < largest_sum && magnitude <= most_cancellation * sum;
}

} // namespace

double Contributions::distance(const Candidates &of, int64_t k) const {
    const double inputs = of.centre - (of.first + static_cast<int32_t>(k)) - 0.5;
    return scale_ < 1 ? inputs * scale_ : inputs;
}

bool Contributions::same_distances(const Candidates &a, const Candidates &b) const {
    for (int64_t k = 0; k < a.count; ++k)
        if (distance(a, k) != distance(b, k)) return false;
    return a.count == b.count;
}

void Contributions::build(int32_t output) {
    if (!weights_) return;
    kernels::ContributionList &list = lists_[static_cast<size_t>(output)];
    double *weights = weights_.get() + (list.weights - weights_.get());
    const Candidates found = candidates(output);
    if (output != 0 && same_distances(found, candidates(output - 1))) {
        const kernels::ContributionList &before = lists_[static_cast<size_t>(output - 1)];
        const int32_t shift = found.first - candidates(output - 1).first;
        list = before;
        list.first += shift;
        return;
    }
    for (int64_t k = 0; k < found.count; ++k) weights[k] = distance(found, k);
    kernel_.weigh(weights, static_cast<size_t>(found.count));
    const double *end = weights + found.count;
    const double *first = std::find_if(static_cast<const double *>(weights), end, [](double w) { return w != 0; });
    while (end != first && end[-1] == 0) --end;
    list.weights = first;
    list.first = found.first + static_cast<int32_t>(first - weights);
    list.count = static_cast<int32_t>(end - first);
    for (int32_t k = 0; k < list.count; ++k) list.sum += first[k];
    list.divisor = kernels::divisor_of(list.sum);
    ordinary_ = ordinary_ && is_ordinary(list);
}

kernels::ContributionList Contributions::operator[](int32_t output) const {
    if (!weights_) return {};
    return lists_[static_cast<size_t>(output)];
}

} // namespace kzb
