#include "geometry/contributions.h"

#include <algorithm>
#include <cmath>

namespace kzb {

Contributions::Contributions(const ScaleKernel &kernel, int32_t outputs, int32_t inputs)
    : kernel_(kernel), inputs_(inputs), scale_(static_cast<double>(outputs) / inputs) {
    int64_t count = 0;
    for (int32_t i = 0; i < outputs; ++i) count += candidates(i).count;
    Buffer<kernels::ContributionList> lists(outputs);
    Buffer<kernels::Contribution> entries(count);
    if (!lists || !entries) return;
    lists_ = std::move(lists);
    entries_ = std::move(entries);
    const kernels::Contribution *free = entries_.get();
    for (int32_t i = 0; i < outputs; ++i) {
        lists_[static_cast<size_t>(i)].entries = free;
        free += candidates(i).count;
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

void Contributions::build(int32_t output) {
    if (!entries_) return;
    kernels::ContributionList &list = lists_[static_cast<size_t>(output)];
    kernels::Contribution *entry = entries_.get() + (list.entries - entries_.get());
    const Candidates found = candidates(output);
    for (int64_t k = 0; k < found.count; ++k) {
        const int32_t j = found.first + static_cast<int32_t>(k);
        double distance = found.centre - j - 0.5;
        if (scale_ < 1) distance *= scale_;
        const double weight = kernel_.weight(distance);
        if (weight == 0) continue;
        entry[list.count++] = {weight, j};
        list.sum += weight;
    }
}

kernels::ContributionList Contributions::operator[](int32_t output) const {
    if (!entries_) return {};
    return lists_[static_cast<size_t>(output)];
}

} // namespace kzb
