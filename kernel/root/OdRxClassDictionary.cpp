#include "OdRxClassDictionary.h"

#include <algorithm>

#include "OdError.h"

OdRxClassDictionary* odrxClassDictionary() {
  // Deliberately never destroyed: modules and other libraries may still unregister classes
  // from their own static destructors at exit. It stays reachable, so it is no leak.
  static OdRxClassDictionary* const dictionary = new OdRxClassDictionary();
  return dictionary;
}

void OdRxClassDictionary::ClassDeleter::operator()(OdRxClass* cls) const {
  delete cls;
}

OdRxClass* OdRxClassDictionary::getAt(const OdString& name) const {
  auto it = classes_.find(name);
  return it == classes_.end() ? nullptr : it->second.get();
}

OdArray<OdString> OdRxClassDictionary::names() const {
  OdArray<OdString> result(static_cast<OdArray<OdString>::size_type>(classes_.size()));
  for (const auto& entry : classes_) result.append(entry.first);
  return result;
}

OdRxClass* OdRxClassDictionary::add(const OdString& name, OdRxClass* parent,
                                    OdPseudoConstructorType constructor, const OdString& dxfName,
                                    const OdString& appName,
                                    OdRxClass::AppNameChangeFuncPtr appNameChange) {
  if (name.isEmpty())
    throw OdError(eInvalidInput, "cannot register a run-time class without a name");
  if (classes_.count(name)) {
    throw OdError(eAlreadyRegistered, "run-time class " + name.toUtf8() + " is already registered");
  }
  std::unique_ptr<OdRxClass, ClassDeleter> cls(
      new OdRxClass(name, parent, constructor, dxfName, appName, appNameChange));
  OdRxClass* added = cls.get();
  classes_.emplace(name, std::move(cls));
  return added;
}

void OdRxClassDictionary::remove(OdRxClass* cls) {
  // Found by address, so that a stale pointer is reported instead of being read.
  auto it = std::find_if(classes_.begin(), classes_.end(),
                         [cls](const auto& entry) { return cls && entry.second.get() == cls; });
  if (it == classes_.end()) {
    throw OdError(eNotInitializedYet, "cannot delete a run-time class that is not registered");
  }
  for (const auto& entry : classes_) {
    if (entry.second->myParent() == cls) {
      throw OdError(eInvalidInput, "cannot delete run-time class " + cls->name().toUtf8() +
                                       " while class " + entry.first.toUtf8() +
                                       " is registered as its child");
    }
  }
  classes_.erase(it);
}
