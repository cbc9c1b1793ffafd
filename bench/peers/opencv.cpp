// OpenCV.

#include "peer.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/xphoto.hpp>

#include <cmath>

namespace kzb::bench {
namespace {

cv::Mat mat_of(const Raster &raster) {
    return cv::Mat(raster.height, raster.width, CV_8UC(raster.channels), raster.bytes, raster.row_bytes);
}

// In the order of the channels.
cv::Scalar colour_of(const Parameters &p) {
    return {double(p.colour[0]), double(p.colour[1]), double(p.colour[2]), double(p.colour[3])};
}

cv::Mat table_of(const Parameters &p) {
    return cv::Mat(1, 256, CV_8U, const_cast<uint8_t *>(p.table.data())).clone();
}

int interpolation(Kernel kernel, bool smaller) {
    switch (kernel) {
    case Kernel::nearest:
        return cv::INTER_NEAREST;
    case Kernel::triangle:
        return cv::INTER_LINEAR;
    case Kernel::box:
        return smaller ? cv::INTER_AREA : cv::INTER_NEAREST;
    case Kernel::lanczos3: // its Lanczos kernel has eight taps
    case Kernel::lanczos8:
        return cv::INTER_LANCZOS4;
    default:
        return cv::INTER_CUBIC;
    }
}

int conversion_code(int channels) {
    return channels == 4 ? cv::COLOR_RGBA2BGRA : cv::COLOR_RGB2BGR;
}

Work auto_level(cv::Mat image) {
    return {[=]() mutable {
                cv::Mat gray, counts;
                cv::cvtColor(image, gray, image.channels() == 4 ? cv::COLOR_RGBA2GRAY : cv::COLOR_RGB2GRAY);
                const int channel = 0, bins = 256;
                const float limits[] = {0, 256};
                const float *ranges = limits;
                cv::calcHist(&gray, 1, &channel, cv::Mat(), counts, 1, &bins, &ranges);
                double sum = 0;
                int low = 0, high = 0;
                const double pixels = static_cast<double>(gray.total());
                for (int i = 0; i < bins; ++i) {
                    sum += static_cast<double>(counts.at<float>(i));
                    if (sum <= pixels * 0.005) low = i;
                    if (sum <= pixels * 0.995) high = i;
                }
                cv::Mat table(1, bins, CV_8U);
                const double scale = 255.0 / std::max(1, high - low);
                for (int i = 0; i < bins; ++i) table.at<uint8_t>(i) = cv::saturate_cast<uint8_t>((i - low) * scale);
                cv::LUT(image, table, image);
            },
            {}};
}

// A turn about the centre onto a canvas that holds all of it.
Work warp(const cv::Mat &source, cv::Mat destination, const Parameters &p) {
    cv::Mat turn = cv::getRotationMatrix2D(
        {static_cast<float>(source.cols - 1) / 2, static_cast<float>(source.rows - 1) / 2}, p.angle, 1);
    turn.at<double>(0, 2) += (destination.cols - source.cols) / 2.0;
    turn.at<double>(1, 2) += (destination.rows - source.rows) / 2.0;
    return {[=]() mutable {
                cv::warpAffine(source, destination, turn, destination.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT,
                               colour_of(p));
            },
            {}};
}

Work blur(const cv::Mat &source, cv::Mat destination, const Parameters &p, bool then_look_up) {
    const int edge = 2 * static_cast<int>(p.radius) + 1;
    const cv::Mat table = table_of(p);
    return {[=]() mutable {
                cv::blur(source, destination, {edge, edge}, {-1, -1}, cv::BORDER_REPLICATE);
                for (int i = 1; i < p.iterations; ++i)
                    cv::blur(destination, destination, {edge, edge}, {-1, -1}, cv::BORDER_REPLICATE);
                if (then_look_up) cv::LUT(destination, table, destination);
            },
            {}};
}

Work shifted_difference(const cv::Mat &source, cv::Mat destination, int level) {
    const cv::Rect here(0, 0, source.cols - level, source.rows - level);
    const cv::Rect there(level, level, source.cols - level, source.rows - level);
    return {[=]() mutable {
                destination.setTo(cv::Scalar::all(128));
                cv::Mat inner = destination(here);
                cv::addWeighted(source(here), 1, source(there), -1, 128, inner);
            },
            {}};
}

Work gradient(const cv::Mat &source, cv::Mat destination) {
    return {[=]() mutable {
                cv::Mat across, down, length;
                cv::Sobel(source, across, CV_32F, 1, 0, 1);
                cv::Sobel(source, down, CV_32F, 0, 1, 1);
                cv::magnitude(across.reshape(1), down.reshape(1), length);
                cv::Mat channels = destination.reshape(1);
                length.convertTo(channels, CV_8U, 2);
            },
            {}};
}

class OpenCV : public Peer {
public:
    OpenCV() { cv::setNumThreads(1); }
    std::string version() const override { return cv::getVersionString(); }

    Work prepare(const std::string &name, const Task &task) override {
        const Parameters p = task.parameters;
        cv::Mat d = mat_of(task.destination);
        const cv::Mat s = task.in_place ? d : mat_of(task.source);
        if (name == "calcHist + LUT") return d.channels() == 1 ? Work() : auto_level(d);
        if (name == "warpAffine") return warp(s, d, p);
        if (name == "blur") return blur(s, d, p, false);
        if (name == "blur + LUT") return blur(s, d, p, true);
        if (name == "shifted difference") return shifted_difference(s, d, p.range);
        if (name == "Sobel + magnitude") return gradient(s, d);
        return {simple(name, s, mat_of(task.source), d, p), {}};
    }

private:
    // One call of the library. In place `s` is the destination; `other` is the task's source all the same.
    static std::function<void()> simple(const std::string &name, cv::Mat s, cv::Mat other, cv::Mat d,
                                        const Parameters &p) {
        if (name == "LUT") return [=, table = table_of(p)]() mutable { cv::LUT(s, table, d); };
        if (name == "bitwise_xor") {
            // Of four channels the first and the third.
            const cv::Scalar mask = s.channels() == 4 ? cv::Scalar(255, 0, 255, 0) : cv::Scalar::all(255);
            return [=]() mutable { cv::bitwise_xor(s, mask, d); };
        }
        if (name == "setTo") return [=, colour = colour_of(p)]() mutable { d.setTo(colour); };
        if (name == "copyTo") return [=]() mutable { s.copyTo(d); };
        if (name == "clone") return made(d, [=] { return s.clone(); });
        if (name == "cvtColor") return [=]() mutable { cv::cvtColor(s, d, conversion_code(s.channels())); };
        if (name == "cvtColor gray")
            return [=]() mutable { cv::cvtColor(s, d, s.channels() == 4 ? cv::COLOR_RGBA2GRAY : cv::COLOR_RGB2GRAY); };
        if (name == "cvtColor to new")
            return made(d, [=] {
                cv::Mat result;
                cv::cvtColor(s, result, conversion_code(s.channels()));
                return result;
            });
        if (name.starts_with("flip "))
            return [=, axis = name == "flip rows"      ? 0
                              : name == "flip columns" ? 1
                                                       : -1]() mutable { cv::flip(s, d, axis); };
        if (name == "rotate 180") return [=]() mutable { cv::rotate(s, d, cv::ROTATE_180); };
        if (name == "rotate 90") return [=]() mutable { cv::rotate(s, d, cv::ROTATE_90_COUNTERCLOCKWISE); };
        if (name == "rotate 270") return [=]() mutable { cv::rotate(s, d, cv::ROTATE_90_CLOCKWISE); };
        if (name == "sepFilter2D") {
            const float f = static_cast<float>(p.radius), w = 1 / (2 * f + 1);
            const cv::Mat taps = (cv::Mat_<float>(3, 1) << f * w, w, f * w);
            return [=]() mutable { cv::sepFilter2D(s, d, -1, taps, taps, {-1, -1}, 0, cv::BORDER_REPLICATE); };
        }
        if (name == "filter2D") {
            cv::Mat kernel(5, 5, CV_32F);
            for (int i = 0; i < 25; ++i)
                kernel.at<float>(i / 5, i % 5) = static_cast<float>(p.weights[static_cast<size_t>(i)] * p.factor);
            return [=]() mutable { cv::filter2D(s, d, -1, kernel, {-1, -1}, 0, cv::BORDER_REPLICATE); };
        }
        if (name == "addWeighted") return [=]() mutable { cv::addWeighted(d, p.factor, other, 1 - p.factor, 0, d); };
        if (name == "oilPainting" && s.channels() != 4)
            return [=]() mutable { cv::xphoto::oilPainting(s, d, p.range, 256 / p.levels); };
        if (name == "resize")
            return [=, how = interpolation(p.kernel, d.cols < s.cols)]() mutable {
                cv::resize(s, d, d.size(), 0, 0, how);
            };
        return {};
    }

    // A result of the library's own, left in the destination as well the first time, to be looked at.
    template <class Make> static std::function<void()> made(cv::Mat d, Make make) {
        return [=, first = true]() mutable {
            const cv::Mat result = make();
            if (first) result.copyTo(d);
            first = false;
        };
    }
};

} // namespace
} // namespace kzb::bench

KZB_BENCH_PEER {
    static kzb::bench::OpenCV peer;
    return &peer;
}
