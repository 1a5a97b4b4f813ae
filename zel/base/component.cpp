#include "zel/base/component.h"

#include <algorithm>

#include "zel/base/errors.h"

namespace zel {
namespace {

[[noreturn]] void assignError(const TPersistent* source, const TPersistent* dest) {
  const std::string from(source ? source->ClassName() : "nil");
  const std::string to(dest ? dest->ClassName() : "nil");
  throw EConvertError("Cannot assign a " + from + " to a " + to);
}

}  // namespace

TObject::~TObject() = default;
std::string_view TObject::ClassName() const { return "TObject"; }

TPersistent::~TPersistent() = default;
std::string_view TPersistent::ClassName() const { return "TPersistent"; }

void TPersistent::Assign(const TPersistent* Source) {
  if (!Source) assignError(Source, this);
  Source->AssignTo(this);
}

void TPersistent::AssignTo(TPersistent* Dest) const { assignError(this, Dest); }

TComponent::TComponent(TComponent* AOwner) : FOwner(AOwner) {
  if (FOwner) FOwner->FOwned.push_back(this);
}

TComponent::~TComponent() {
  // Last created first, since later objects may refer to earlier ones.
  while (!FOwned.empty()) {
    TComponent* last = FOwned.back();
    FOwned.pop_back();
    last->FOwner = nullptr;
    delete last;
  }
  LeaveOwner();
}

void TComponent::LeaveOwner() noexcept {
  if (!FOwner) return;
  auto& list = FOwner->FOwned;
  list.erase(std::find(list.begin(), list.end(), this));
  FOwner = nullptr;
}

void TComponent::TakeOwnership(TComponent* component) {
  if (!component || component == this || Owns(component) || IsOwnedBy(component)) return;
  FOwned.push_back(component);
  component->LeaveOwner();
  component->FOwner = this;
}

void TComponent::ReleaseOwnership(TComponent* component) noexcept {
  if (Owns(component)) component->LeaveOwner();
}

bool TComponent::Owns(const TComponent* component) const {
  return std::find(FOwned.begin(), FOwned.end(), component) != FOwned.end();
}

bool TComponent::IsOwnedBy(const TComponent* component) const {
  const TComponent* owner = FOwner;
  while (owner && owner != component) owner = owner->FOwner;
  return owner && component;
}

std::string_view TComponent::ClassName() const { return "TComponent"; }

TComponent* TComponent::Components(int index) const {
  return index >= 0 && index < ComponentCount() ? FOwned[static_cast<std::size_t>(index)] : nullptr;
}

std::string TComponent::ComponentMessage(std::string_view suffix) const {
  std::string text = "Component \"";
  text += FName;
  text += suffix;
  return text;
}

}  // namespace zel
