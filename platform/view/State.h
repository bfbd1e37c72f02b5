// Where a view keeps what it remembers, and how it hands it on to other views.
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Observable.h"

namespace quillmont {

/// A value that lives somewhere else: read and written through it. Main thread, like all here.
template <class T>
class Binding {
 public:
  Binding(std::function<T()> get, std::function<void(T)> set)
      : get_(std::move(get)), set_(std::move(set)) {}

  T get() const { return get_(); }
  void set(T value) const { set_(std::move(value)); }

 private:
  std::function<T()> get_;
  std::function<void(T)> set_;
};

/// One remembered value on the screen, whatever its type.
class StateCell {
 public:
  virtual ~StateCell() = default;
  std::function<void()> onChange;
};

/// A value that belongs to a view and lasts as long as that view is on the screen, however often
/// the panel is built anew. Copies that a connected view makes are the same value.
template <class T>
class State {
 public:
  explicit State(T initial) : cell_(std::make_shared<Cell>(std::move(initial))) {}

  const T& get() const { return cell_->value; }
  void set(T value) const { assign(*cell_, std::move(value)); }

  Binding<T> binding() const {
    return {[cell = cell_] { return cell->value; },
            [cell = cell_](T value) { assign(*cell, std::move(value)); }};
  }

 private:
  friend class StateScope;

  struct Cell : StateCell {
    explicit Cell(T initial) : value(std::move(initial)) {}
    T value;
  };

  static void assign(Cell& cell, T value) {
    if (cell.value == value) return;
    cell.value = std::move(value);
    if (cell.onChange) cell.onChange();
  }

  std::shared_ptr<Cell> cell_;
};

/// What a view has on the screen beside its native views: its values, and the objects it watches.
struct ViewMemory {
  std::vector<std::shared_ptr<StateCell>> cells;
  std::vector<std::pair<const ObservableObject*, Subscription>> watched;
};

/// Handed to a view before its body is asked for: connects the view with its memory.
class StateScope {
 public:
  /// Both must outlive the scope.
  StateScope(ViewMemory& memory, const std::function<void()>& invalidate)
      : memory_(memory), invalidate_(invalidate) {}

  /// The view's values, always in the same order: each takes up what it was when the view was
  /// last built.
  template <class T>
  void remember(State<T>& state) {
    using Cell = typename State<T>::Cell;
    const auto index = next_++;
    if (index < memory_.cells.size()) {
      state.cell_ = std::static_pointer_cast<Cell>(memory_.cells[index]);
      return;
    }
    // A cell of its own: copies of one view may stand in several places.
    state.cell_ = std::make_shared<Cell>(state.cell_->value);
    state.cell_->onChange = invalidate_;
    memory_.cells.push_back(state.cell_);
  }

  /// The panel is built anew whenever `object` changes.
  void observe(ObservableObject& object) {
    for (const auto& watched : memory_.watched) {
      if (watched.first == &object) return;
    }
    memory_.watched.emplace_back(&object, object.objectWillChange().subscribe(invalidate_));
  }

 private:
  ViewMemory& memory_;
  const std::function<void()>& invalidate_;
  std::size_t next_ = 0;
};

}  // namespace quillmont
