// Which input pixels, along one side of an image, make up each output pixel, and with which weights.
#pragma once

#include "geometry/scale_kernels.h"
#include "kernels/resample.h"
#include "platform/buffer.h"

namespace kzb {

class Contributions {
public:
    // Empty lists, one for each of `outputs` pixels made from `inputs`. Where the memory cannot be had they stay empty.
    Contributions(const ScaleKernel &kernel, int32_t outputs, int32_t inputs);

    // Fills the list of an output pixel, in ascending order of input pixels. That of the output before is already
    // filled.
    void build(int32_t output);

    // Whether there is memory for the lists.
    explicit operator bool() const { return static_cast<bool>(weights_); }

    // Whether each list built so far is one of a filter's ordinary ones: not empty, with a sum that is neither tiny nor
    // small beside its weights. Means then stay far from the ends of the numbers' range.
    bool ordinary() const { return weights_ && ordinary_; }

    kernels::ContributionList operator[](int32_t output) const;
    // All lists; none without memory.
    const kernels::ContributionList *lists() const { return lists_.get(); }

private:
    struct Candidates {
        double centre;
        int32_t first;
        int64_t count;
    };
    Candidates candidates(int32_t output) const;
    // Of a candidate, as the filter sees it.
    double distance(const Candidates &of, int64_t k) const;
    // Whether their weights are the same, as those of most outputs are when an image shrinks to a whole part.
    bool same_distances(const Candidates &a, const Candidates &b) const;

    const ScaleKernel &kernel_;
    int32_t inputs_;
    double scale_;
    Buffer<kernels::ContributionList> lists_;
    Buffer<double> weights_;
    bool ordinary_ = true;
};

} // namespace kzb
