#include "OdResBuf.h"

#include "DxfDocument.h"
#include "DxfGroupCode.h"
#include "OdDbDatabase.h"
#include "OdError.h"

ODRX_DEFINE_RTTI_MEMBERS(OdResBuf, OdRxObject);
ODRX_DEFINE_PSEUDOCONSTRUCTOR(OdResBuf, OdResBuf);
ODRX_DEFINE_INIT_MEMBERS(OdResBuf, OdRxObject, &OdResBuf::pseudoConstructor, "", "");

namespace {
bool isHandleCode(int code) {
  return DxfGroupCode::isHandle(code) && code != 5 && code != 105;
}
}  // namespace

OdResBufPtr OdResBuf::newRb(int restype) {
  OdResBufPtr rb = createObject();
  rb->restype_ = restype;
  return rb;
}
OdResBufPtr OdResBuf::newRb(int restype, const OdString& value) {
  OdResBufPtr rb = newRb(restype);
  rb->value_ = value;
  return rb;
}
OdResBufPtr OdResBuf::newRb(int restype, const wchar_t* value) {
  return newRb(restype, OdString(value));
}
OdResBufPtr OdResBuf::newRb(int restype, const char* utf8) {
  return newRb(restype, OdString::fromUtf8(utf8 ? utf8 : ""));
}
OdResBufPtr OdResBuf::newRb(int restype, int value) {
  return newRb(restype, static_cast<std::int64_t>(value));
}
OdResBufPtr OdResBuf::newRb(int restype, std::int64_t value) {
  OdResBufPtr rb = newRb(restype);
  rb->value_ = value;
  return rb;
}
OdResBufPtr OdResBuf::newRb(int restype, double value) {
  OdResBufPtr rb = newRb(restype);
  rb->value_ = value;
  return rb;
}
OdResBufPtr OdResBuf::newRb(int restype, bool value) {
  return newRb(restype, static_cast<std::int64_t>(value ? 1 : 0));
}
OdResBufPtr OdResBuf::newRb(int restype, const OdDbHandle& value) {
  OdResBufPtr rb = newRb(restype);
  rb->value_ = value;
  return rb;
}

OdResBuf* OdResBuf::setNext(OdResBuf* next) {
  next_ = next;
  return next;
}

OdResBuf* OdResBuf::last() {
  OdResBuf* rb = this;
  while (rb->next_) rb = rb->next_.get();
  return rb;
}

OdResBuf* OdResBuf::at(int index) {
  OdResBuf* rb = this;
  for (int i = 0; rb && i < index; ++i) rb = rb->next_.get();
  if (!rb || index < 0) throw OdError_InvalidIndex();
  return rb;
}

void OdResBuf::wrongKind(const char* wanted) const {
  throw OdError(eInvalidInput,
                "result buffer of type " + std::to_string(restype_) + " does not hold " + wanted);
}

const OdString& OdResBuf::getString() const {
  if (const auto* s = std::get_if<OdString>(&value_)) return *s;
  wrongKind("text");
}
void OdResBuf::setString(const OdString& value) {
  value_ = value;
}

std::int64_t OdResBuf::getInt64() const {
  if (const auto* i = std::get_if<std::int64_t>(&value_)) return *i;
  if (const auto* d = std::get_if<double>(&value_)) return static_cast<std::int64_t>(*d);
  wrongKind("a number");
}
void OdResBuf::setInt64(std::int64_t value) {
  value_ = value;
}

double OdResBuf::getDouble() const {
  if (const auto* d = std::get_if<double>(&value_)) return *d;
  if (const auto* i = std::get_if<std::int64_t>(&value_)) return static_cast<double>(*i);
  wrongKind("a number");
}
void OdResBuf::setDouble(double value) {
  value_ = value;
}

OdDbHandle OdResBuf::getHandle() const {
  if (const auto* h = std::get_if<OdDbHandle>(&value_)) return *h;
  wrongKind("a handle");
}
void OdResBuf::setHandle(const OdDbHandle& value) {
  value_ = value;
}

OdDbObjectId OdResBuf::getObjectId(OdDbDatabase* db) const {
  if (!db) return OdDbObjectId();
  return db->getOdDbObjectId(getHandle());
}

const std::string& OdResBuf::getBinaryChunk() const {
  if (const auto* b = std::get_if<std::string>(&value_)) return *b;
  wrongKind("binary data");
}
void OdResBuf::setBinaryChunk(std::string bytes) {
  value_ = std::move(bytes);
}

OdResBufPtr OdResBuf::fromTags(const DxfObject& obj, std::size_t begin, std::size_t end) {
  OdResBufPtr head;
  OdResBuf* tail = nullptr;
  const DxfDocument& doc = obj.document();
  for (std::size_t i = begin; i < end; ++i) {
    const DxfTag& tag = obj.tag(i);
    OdResBufPtr rb;
    DxfValueType type = DxfGroupCode::valueType(tag.code);
    if (isHandleCode(tag.code)) {
      OdDbHandle h;
      OdDbHandle::parse(doc.rawValue(tag), h);
      rb = newRb(tag.code, h);
    } else if (type == DxfValueType::kString || type == DxfValueType::kUnknown) {
      rb = newRb(tag.code, doc.text(tag));
    } else if (type == DxfValueType::kBinary) {
      rb = newRb(tag.code);
      rb->setBinaryChunk(doc.binaryChunk(tag));
    } else if (type == DxfValueType::kDouble) {
      rb = newRb(tag.code, doc.real(tag));
    } else {
      rb = newRb(tag.code, doc.integer(tag));
    }
    if (tail)
      tail = tail->setNext(rb.get());
    else
      head = rb, tail = rb.get();
  }
  return head;
}

std::vector<DxfTag> OdResBuf::toTags(DxfDocument& doc, const OdResBuf* chain) {
  std::vector<DxfTag> tags;
  for (const OdResBuf* rb = chain; rb; rb = rb->next_.get()) {
    int code = rb->restype_;
    DxfValueType type = DxfGroupCode::valueType(code);
    if (type == DxfValueType::kUnknown)
      throw OdError(eInvalidInput, "result buffer type " + std::to_string(code) +
                                       " is not a group code a drawing can store");
    if (const auto* h = std::get_if<OdDbHandle>(&rb->value_)) {
      tags.push_back(doc.makeText(code, h->ascii()));
    } else if (type == DxfValueType::kString) {
      if (const auto* s = std::get_if<OdString>(&rb->value_))
        tags.push_back(doc.makeText(code, *s));
      else
        rb->wrongKind("text");
    } else if (type == DxfValueType::kBinary) {
      tags.push_back(doc.makeBinary(code, rb->getBinaryChunk()));
    } else if (type == DxfValueType::kDouble) {
      tags.push_back(doc.makeReal(code, rb->getDouble()));
    } else {
      tags.push_back(doc.makeInteger(code, rb->getInt64()));
    }
  }
  return tags;
}
