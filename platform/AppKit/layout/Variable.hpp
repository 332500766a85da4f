// A solver variable: a shared handle, so copies name the same unknown and
// see the value the solver last wrote.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace talvo::layout {

class Variable {
 public:
  Variable();
  explicit Variable(std::string name, double value = 0.0);

  const std::string& name() const { return data_->name; }
  double value() const { return data_->value; }
  void setValue(double value) { data_->value = value; }
  // Creation order; the solver orders its unknowns by it, which keeps
  // results independent of heap addresses.
  std::uint64_t id() const { return data_->id; }

  friend bool operator==(const Variable& a, const Variable& b) { return a.data_ == b.data_; }
  friend bool operator!=(const Variable& a, const Variable& b) { return a.data_ != b.data_; }
  friend bool operator<(const Variable& a, const Variable& b) { return a.id() < b.id(); }

 private:
  struct Data {
    std::string name;
    double value = 0.0;
    std::uint64_t id = 0;
  };
  std::shared_ptr<Data> data_;
};

}  // namespace talvo::layout
