#include "signal/raw/raw_edges.h"

#include <algorithm>
#include <cmath>

namespace keplo {

namespace {

/// What an edge strays by at the least, microseconds: the raster of both hearings.
constexpr float kLeastStray = 20;
/// Of normally spread values: their standard deviation by the median of their sizes.
constexpr float kOfMedian = 1.483F;

}  // namespace

void RawEdges::BeginFrame() {
  begins_.push_back(edges_.size());
  edges_.emplace_back();
}

void RawEdges::Add(float length, float off) {
  const Edge& last = edges_.back();
  edges_.push_back({last.At + length, last.Apart + off});
}

void RawEdges::Add(const RawEdges& other) {
  for (const std::size_t begin : other.begins_) begins_.push_back(edges_.size() + begin);
  edges_.insert(edges_.end(), other.edges_.begin(), other.edges_.end());
}

std::vector<RawEdges::Frame> RawEdges::Frames() const {
  std::vector<Frame> frames;
  for (std::size_t i = 0; i < begins_.size(); ++i) {
    frames.push_back({begins_[i], i + 1 < begins_.size() ? begins_[i + 1] : edges_.size()});
  }
  return frames;
}

void RawEdges::TakePaceOff(std::span<Edge> edges) {
  float times = 0, products = 0;
  for (const Edge& edge : edges) {
    times += edge.At * edge.At;
    products += edge.At * edge.Apart;
  }
  if (times == 0) return;
  for (Edge& edge : edges) edge.Apart -= products / times * edge.At;
}

std::vector<RawEdges::Edge> RawEdges::Fitted(Pace pace) const {
  std::vector<Edge> fitted = edges_;
  for (const Frame& frame : Frames()) {
    const std::span<Edge> edges = std::span(fitted).subspan(frame.Begin, frame.End - frame.Begin);
    Edge mean;
    const auto count = static_cast<float>(edges.size());
    for (const Edge& edge : edges) {
      mean.At += edge.At / count;
      mean.Apart += edge.Apart / count;
    }
    for (Edge& edge : edges) edge = {edge.At - mean.At, edge.Apart - mean.Apart};
    if (pace == Pace::OfEachFrame) TakePaceOff(edges);
  }
  if (pace == Pace::OfAll) TakePaceOff(fitted);
  return fitted;
}

float RawEdges::Squares() const {
  float squares = 0;
  for (const Edge& edge : Fitted(Pace::OfAll)) squares += edge.Apart * edge.Apart;
  return squares;
}

std::vector<float> RawEdges::Offs() const {
  std::vector<float> offs;
  for (const Frame& frame : Frames()) {
    for (std::size_t i = frame.Begin + 1; i < frame.End; ++i) {
      offs.push_back(std::abs(edges_[i].Apart - edges_[i - 1].Apart));
    }
  }
  return offs;
}

float RawEdges::Stray() const {
  std::vector<float> offs = Offs();
  if (offs.empty()) return kLeastStray;
  const auto middle = offs.begin() + static_cast<std::ptrdiff_t>(offs.size() / 2);
  std::nth_element(offs.begin(), middle, offs.end());
  // A length has two edges.
  return std::max(kLeastStray, kOfMedian * *middle / std::sqrt(2.0F));
}

float RawEdges::Furthest() const {
  const std::vector<float> offs = Offs();
  if (offs.empty()) return 0;
  return *std::max_element(offs.begin(), offs.end()) / (Stray() * std::sqrt(2.0F));
}

float RawEdges::Step(Pace pace) const {
  const std::vector<Edge> fitted = Fitted(pace);
  float furthest = 0;
  for (const Frame& frame : Frames()) {
    for (std::size_t stretch = 2; stretch <= frame.End - frame.Begin; stretch *= 2) {
      float sum = 0;
      for (std::size_t i = frame.Begin; i < frame.End; ++i) {
        sum += fitted[i].Apart;
        if (i + 1 < frame.Begin + stretch) continue;
        furthest = std::max(furthest, std::abs(sum) / std::sqrt(static_cast<float>(stretch)));
        sum -= fitted[i + 1 - stretch].Apart;
      }
    }
  }
  return furthest / Stray();
}

}  // namespace keplo
