#include "print.h"

namespace kzb::bench {

namespace {

std::string title_of(const PeerTime &peer) {
    return peer.peer + " " + peer.operation;
}

// The peers that are not the best one, the doubtful ones with how far they are off.
std::string others(const Row &row) {
    std::string text;
    for (const PeerTime &peer : row.peers) {
        if (&peer == row.best_peer()) continue;
        text += (text.empty() ? "" : ", ") + title_of(peer) + " " + number(peer.time.median);
        if (!peer.plausible)
            text += " (not the same: differs by " + number(peer.difference, 1) + ")";
        else if (!peer.counted)
            text += " (not counted)";
    }
    return text;
}

std::string goal(const Row &row) {
    std::string text = row.target ? number(*row.target, 2) : "";
    if (row.limit) text += (text.empty() ? "" : ", ") + number(*row.limit, 1) + " ns";
    return text;
}

} // namespace

Table row_table(Style style) {
    return {{
                {"operation", -30},
                {"layout", -6},
                {"size", -9},
                {"ns/px", 8},
                {"min", 8},
                {"nil", 8},
                {"best peer", -34},
                {"its ns/px", 9},
                {"ratio", 6},
                {"goal", 5},
                {"reached", -7},
                {"of copy", 7},
                {"memset", 7},
                {"held", -6},
                {"other peers", -1},
            },
            style};
}

std::string line_of(const Row &row, const Table &table) {
    std::vector<std::string> cells = {row.operation, row.layout, row.size};
    if (row.wrong()) {
        cells.push_back(row.held);
        return table.line(cells);
    }
    const PeerTime *best = row.best_peer();
    const auto ratio = row.ratio();
    const auto met = row.met();
    cells.insert(cells.end(),
                 {number(row.ours().median), number(row.ours().minimum), row.nil ? number(row.nil->median) : "",
                  best != nullptr ? title_of(*best) : "", best != nullptr ? number(best->time.median) : "",
                  ratio ? number(*ratio, 2) : "", goal(row),
                  !met   ? ""
                  : *met ? "yes"
                         : "NO",
                  number(row.share_of_copy(), 2), number(row.set.median), row.held, others(row)});
    return table.line(cells);
}

std::string legend(Style style) {
    const char *const lines[] = {
        "ns/px, min: nanoseconds per pixel of the larger picture with a passed destination, median and minimum of the "
        "rounds; nil: the median with a new destination (or, for Scale, a new intermediate image)",
        "ratio: our median to that of the best peer that does the same work; goal: the ratio to reach, and "
        "nanoseconds not to exceed; where only `nil` is filled in a passed destination has no meaning",
        "of copy: memcpy's time for the larger picture's bytes divided by ours; memset: its nanoseconds per pixel",
        "held: whole, the result was held against the plain reference at this size, with a passed and a new "
        "destination, byte for byte; strips, at 24 rows of this width and 24 columns of this height, because the "
        "reference takes too long for the whole picture (--whole holds everything at full size)",
        "peers work on the same pixels with one thread; their results are compared with ours, colour bytes only, and "
        "those that differ by more than their bound in bench/pairs.cpp are named and not counted",
    };
    std::string text;
    for (const char *each : lines) text += note(each, style);
    return text;
}

nlohmann::json json_of(const Row &row) {
    const auto time = [](const Time &t) { return nlohmann::json{{"median", t.median}, {"minimum", t.minimum}}; };
    nlohmann::json json = {
        {"operation", row.operation}, {"layout", row.layout}, {"size", row.size}, {"held", row.held}};
    if (row.wrong()) return json;
    if (row.passed) json["passed"] = time(*row.passed);
    if (row.nil) json["nil"] = time(*row.nil);
    json["memcpy"] = time(row.copy);
    json["memset"] = time(row.set);
    json["peers"] = nlohmann::json::array();
    for (const PeerTime &peer : row.peers)
        json["peers"].push_back({{"peer", peer.peer},
                                 {"operation", peer.operation},
                                 {"time", time(peer.time)},
                                 {"difference", peer.difference},
                                 {"plausible", peer.plausible},
                                 {"counted", peer.counted}});
    if (const PeerTime *best = row.best_peer()) json["best peer"] = best->peer;
    if (const auto ratio = row.ratio()) json["ratio"] = *ratio;
    if (row.target) json["target"] = *row.target;
    if (row.limit) json["limit"] = *row.limit;
    if (const auto met = row.met()) json["met"] = *met;
    return json;
}

} // namespace kzb::bench
