#include "geometry/contributions.h"

#include <algorithm>
#include <cmath>

namespace kzb {

Contributions::Contributions(const ScaleKernel &kernel, int32_t outputs, int32_t inputs, Span span)
    : kernel_(kernel), inputs_(inputs), scale_(static_cast<double>(outputs) / inputs), span_(span) {
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
    const bool shrinks = scale_ < 1;
    const double reach = shrinks ? kernel_.support / scale_ : kernel_.support;
    double first = centre - reach;
    double last = centre + reach;
    if (shrinks || span_ == Span::toward_zero) {
        first = std::trunc(first);
        last = std::trunc(last);
    } else {
        first = std::floor(first);
        last = std::ceil(last);
    }
    first = std::max(first, 0.0);
    last = std::min(last, inputs_ - 1.0);
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
