/// @file
/// Object model: TObject, TPersistent, TComponent. Components have an owner and a name, are
/// destroyed with their owner, and are neither copied nor moved; Assign and Clone copy contents.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// Root of the class hierarchy. Objects are not synchronised: one thread at a time.
class ZEL_API TObject {
 public:
  TObject() = default;
  TObject(const TObject&) = delete;
  TObject& operator=(const TObject&) = delete;
  virtual ~TObject();
  /// Name of the dynamic class, for messages.
  [[nodiscard]] virtual std::string_view ClassName() const;
};

/// An object whose contents can be copied to another object.
class ZEL_API TPersistent : public TObject {
 public:
  ~TPersistent() override;
  [[nodiscard]] std::string_view ClassName() const override;
  /// Copies the contents of Source. The default asks Source to copy itself by AssignTo.
  /// @throws EConvertError  if neither class knows how
  virtual void Assign(const TPersistent* Source);
  /// Copies the contents to Dest.
  /// @throws EConvertError  if the classes do not fit
  virtual void AssignTo(TPersistent* Dest) const;
};

/// Base of all containers and engines.
class ZEL_API TComponent : public TPersistent {
 public:
  /// @param AOwner  destroys this object when it is destroyed itself; null: the caller does. An
  ///   object that is destroyed first leaves its owner's list.
  explicit TComponent(TComponent* AOwner = nullptr);
  ~TComponent() override;
  [[nodiscard]] std::string_view ClassName() const override;

  [[nodiscard]] TComponent* Owner() const { return FOwner; }
  /// Number of objects that this one owns.
  [[nodiscard]] int ComponentCount() const { return static_cast<int>(FOwned.size()); }
  /// Owned object by its 0-based position in order of creation; null outside.
  [[nodiscard]] TComponent* Components(int index) const;

  /// Appears in error messages; empty at first.
  [[nodiscard]] const std::string& Name() const { return FName; }
  void SetName(std::string_view name) { FName = name; }

 protected:
  /// `Component "`, the name and the suffix; the suffix closes the quotation.
  [[nodiscard]] std::string ComponentMessage(std::string_view suffix) const;
  /// Throws E with the component message.
  template <class E>
  [[noreturn]] void Raise(std::string_view suffix) const {
    throw E(ComponentMessage(suffix));
  }
  /// Calls an event if a handler is set. A copy is called, so that the handler may clear or replace
  /// itself while it runs.
  template <class Event, class... Args>
  static void Fire(const Event& event, Args&&... args) {
    if (event) {
      const Event running = event;
      running(std::forward<Args>(args)...);
    }
  }
  /// Becomes the owner of an object, which leaves the one it had. An object that owns this one,
  /// directly or not, stays what it is; null: nothing happens.
  void TakeOwnership(TComponent* component);
  /// Gives up an object that this one owns, which has no owner then; another one: nothing happens.
  void ReleaseOwnership(TComponent* component) noexcept;
  /// The object, which need not exist any more, is owned by this one.
  [[nodiscard]] bool Owns(const TComponent* component) const;
  /// It owns this one, directly or not.
  [[nodiscard]] bool IsOwnedBy(const TComponent* component) const;

 private:
  void LeaveOwner() noexcept;

  TComponent* FOwner = nullptr;
  std::vector<TComponent*> FOwned;
  std::string FName;
};

}  // namespace zel
