#include "platform/AppKit/layout/Variable.hpp"

#include <atomic>
#include <utility>

namespace talvo::layout {

namespace {
std::uint64_t NextVariableId() {
  static std::atomic<std::uint64_t> next{1};
  return next.fetch_add(1, std::memory_order_relaxed);
}
}  // namespace

Variable::Variable() : Variable(std::string()) {}

Variable::Variable(std::string name, double value)
    : data_(std::make_shared<Data>(Data{std::move(name), value, NextVariableId()})) {}

}  // namespace talvo::layout
