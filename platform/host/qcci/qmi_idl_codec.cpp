#include "platform/host/qcci/qmi_idl_codec.h"

#include <cstring>

namespace rpk_qmi {
namespace {

// A service's tables never hold more TLVs than this; a table without a "last"
// flag is malformed rather than read past its end.
constexpr int kMaxTlvs = 64;
constexpr int kMaxAggregateDepth = 4;

struct Element {
  uint8_t tlv_type = 0;
  bool optional = false;
  bool last = false;
  uint32_t valid_offset = 0;
  uint8_t type = 0;
  bool is_array = false;
  bool variable = false;
  bool count_is_16 = false;
  uint32_t offset = 0;
  uint32_t max_count = 1;
  uint32_t len_offset = 0;
  const qmi_idl_type_table_entry *aggregate = nullptr;
  const qmi_idl_type_table_object *aggregate_table = nullptr;
};

// Reads element-table bytes; a table is trusted to be well formed only as far
// as the element descriptions go, never for the struct bounds.
class TableReader {
 public:
  explicit TableReader(const uint8_t *p) : p_(p) {}
  uint8_t u8() { return *p_++; }
  uint16_t u16() {
    uint16_t v = static_cast<uint16_t>(p_[0] | (p_[1] << 8));
    p_ += 2;
    return v;
  }
  uint8_t peek() const { return *p_; }

 private:
  const uint8_t *p_;
};

uint32_t c_size_of(uint8_t type) {
  switch (type) {
    case QMI_IDL_GENERIC_1_BYTE:
      return 1;
    case QMI_IDL_GENERIC_2_BYTE:
      return 2;
    case QMI_IDL_GENERIC_4_BYTE:
      return 4;
    case QMI_IDL_GENERIC_8_BYTE:
      return 8;
    case QMI_IDL_2_BYTE_ENUM:
      return 4;
    default:
      return 0;
  }
}

uint32_t wire_size_of(uint8_t type) { return type == QMI_IDL_2_BYTE_ENUM ? 2 : c_size_of(type); }

// Entry `index` of a type table's referenced tables; nullptr when there is none.
const qmi_idl_type_table_object *referenced_table(const qmi_idl_type_table_object *table,
                                                  uint16_t index) {
  if (table == nullptr || index >= table->n_referenced_tables ||
      table->p_referenced_tables == nullptr) {
    return nullptr;
  }
  return table->p_referenced_tables[index];
}

// Parses the element description after the TLV header (or inside an aggregate).
int read_element(TableReader &r, const qmi_idl_type_table_object *table, Element *e) {
  uint8_t flags = r.u8();
  if ((flags & 0x08) != 0) return QMI_IDL_LIB_PARAMETER_ERROR;
  e->type = flags & QMI_IDL_FLAGS_TYPE_MASK;
  e->is_array = (flags & QMI_IDL_FLAGS_IS_ARRAY) != 0;
  e->variable = (flags & QMI_IDL_FLAGS_IS_VARIABLE_LEN) != 0;
  e->count_is_16 = (flags & QMI_IDL_FLAGS_SZ_IS_16) != 0;
  const bool offset_16 = (flags & QMI_IDL_FLAGS_OFFSET_IS_16) != 0;
  e->offset = offset_16 ? r.u16() : r.u8();
  if (e->variable && !e->is_array) return QMI_IDL_LIB_PARAMETER_ERROR;
  if (e->is_array) {
    e->max_count = e->count_is_16 ? r.u16() : r.u8();
    if (e->variable) e->len_offset = offset_16 ? r.u16() : r.u8();
  }
  if (e->type == QMI_IDL_AGGREGATE) {
    uint8_t table_index = r.u8();
    uint8_t type_index = r.u8();
    const qmi_idl_type_table_object *t = referenced_table(table, table_index);
    if (t == nullptr || type_index >= t->n_types || t->p_types == nullptr) {
      return QMI_IDL_LIB_PARAMETER_ERROR;
    }
    e->aggregate = &t->p_types[type_index];
    e->aggregate_table = t;
  } else if (c_size_of(e->type) == 0) {
    return QMI_IDL_LIB_PARAMETER_ERROR;
  }
  return QMI_IDL_LIB_NO_ERR;
}

int read_tlv_entry(TableReader &r, const qmi_idl_type_table_object *table, Element *e) {
  uint8_t tlv_flags = r.u8();
  e->last = (tlv_flags & QMI_IDL_TLV_FLAGS_LAST_TLV) != 0;
  e->optional = (tlv_flags & QMI_IDL_TLV_FLAGS_OPTIONAL) != 0;
  uint8_t nibble = tlv_flags & QMI_IDL_TLV_FLAGS_TYPE_MASK;
  e->tlv_type = e->optional ? r.u8() : nibble;
  int rc = read_element(r, table, e);
  if (rc != QMI_IDL_LIB_NO_ERR) return rc;
  if (e->optional) {
    if (nibble == 0 || nibble > e->offset) return QMI_IDL_LIB_PARAMETER_ERROR;
    e->valid_offset = e->offset - nibble;
  }
  return QMI_IDL_LIB_NO_ERR;
}

uint32_t c_element_size(const Element &e) {
  return e.aggregate != nullptr ? e.aggregate->c_struct_sz : c_size_of(e.type);
}

bool fits(uint32_t offset, uint64_t size, uint32_t limit) {
  return static_cast<uint64_t>(offset) + size <= limit;
}

class Writer {
 public:
  Writer(uint8_t *out, uint32_t cap) : out_(out), cap_(cap) {}
  bool put(const uint8_t *p, uint32_t n) {
    if (cap_ - len_ < n) return false;
    memcpy(out_ + len_, p, n);
    len_ += n;
    return true;
  }
  bool put_le(uint64_t v, uint32_t n) {
    uint8_t b[8];
    for (uint32_t i = 0; i < n; ++i) b[i] = static_cast<uint8_t>(v >> (8 * i));
    return put(b, n);
  }
  uint32_t len() const { return len_; }
  uint8_t *at(uint32_t pos) { return out_ + pos; }

 private:
  uint8_t *out_;
  uint32_t cap_;
  uint32_t len_ = 0;
};

class Reader {
 public:
  Reader(const uint8_t *p, uint32_t n) : p_(p), left_(n) {}
  bool get(uint8_t *dst, uint32_t n) {
    if (left_ < n) return false;
    memcpy(dst, p_, n);
    p_ += n;
    left_ -= n;
    return true;
  }
  bool get_le(uint64_t *v, uint32_t n) {
    uint8_t b[8] = {};
    if (!get(b, n)) return false;
    *v = 0;
    for (uint32_t i = 0; i < n; ++i) *v |= static_cast<uint64_t>(b[i]) << (8 * i);
    return true;
  }
  bool skip(uint32_t n) {
    if (left_ < n) return false;
    p_ += n;
    left_ -= n;
    return true;
  }
  uint32_t left() const { return left_; }

 private:
  const uint8_t *p_;
  uint32_t left_;
};

// Struct scalars are host order; the host is little-endian like the wire, but
// values go through these so the wire stays right either way.
template <typename T>
uint64_t load_as(const uint8_t *src) {
  T x;
  memcpy(&x, src, sizeof x);
  return x;
}

template <typename T>
void store_as(uint8_t *dst, uint64_t v) {
  const auto x = static_cast<T>(v);
  memcpy(dst, &x, sizeof x);
}

// A scalar of n (1, 2, 4 or 8) bytes in a C struct.
uint64_t load_scalar(const uint8_t *src, uint32_t n) {
  if (n == 1) return load_as<uint8_t>(src);
  if (n == 2) return load_as<uint16_t>(src);
  if (n == 4) return load_as<uint32_t>(src);
  return load_as<uint64_t>(src);
}

void store_scalar(uint8_t *dst, uint64_t v, uint32_t n) {
  if (n == 1) {
    store_as<uint8_t>(dst, v);
  } else if (n == 2) {
    store_as<uint16_t>(dst, v);
  } else if (n == 4) {
    store_as<uint32_t>(dst, v);
  } else {
    store_as<uint64_t>(dst, v);
  }
}

int encode_aggregate(const Element &e, const uint8_t *base, Writer &w, int depth);
int decode_aggregate(const Element &e, uint8_t *base, Reader &r, int depth);

// One value of the element (one array member) at `src`.
int encode_one(const Element &e, const uint8_t *src, Writer &w, int depth) {
  if (e.aggregate != nullptr) return encode_aggregate(e, src, w, depth);
  if (e.type == QMI_IDL_2_BYTE_ENUM) {
    return w.put_le(static_cast<uint16_t>(load_scalar(src, 4)), 2) ? 0
                                                                   : QMI_IDL_LIB_BUFFER_TOO_SMALL;
  }
  const uint32_t n = c_size_of(e.type);
  const uint64_t v = load_scalar(src, n);
  return w.put_le(v, n) ? 0 : QMI_IDL_LIB_BUFFER_TOO_SMALL;
}

int decode_one(const Element &e, uint8_t *dst, Reader &r, int depth) {
  if (e.aggregate != nullptr) return decode_aggregate(e, dst, r, depth);
  uint64_t v = 0;
  if (!r.get_le(&v, wire_size_of(e.type))) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
  if (e.type == QMI_IDL_2_BYTE_ENUM) {
    // Sign-extended into the C enum's 4 bytes.
    store_scalar(dst, static_cast<uint32_t>(static_cast<int32_t>(static_cast<int16_t>(v))), 4);
  } else {
    store_scalar(dst, v, c_size_of(e.type));
  }
  return 0;
}

// The whole element (all members of an array) of the struct at `base`, which
// spans `limit` bytes.
int encode_element(const Element &e, const uint8_t *base, uint32_t limit, Writer &w, int depth) {
  const uint32_t size = c_element_size(e);
  uint32_t count = 1;
  if (e.is_array) {
    count = e.max_count;
    if (e.variable) {
      if (!fits(e.len_offset, 4, limit)) return QMI_IDL_LIB_PARAMETER_ERROR;
      count = static_cast<uint32_t>(load_scalar(base + e.len_offset, 4));
      if (count > e.max_count) return QMI_IDL_LIB_ARRAY_TOO_BIG;
      if (!w.put_le(count, e.count_is_16 ? 2 : 1)) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
    }
  }
  if (!fits(e.offset, static_cast<uint64_t>(size) * (e.is_array ? e.max_count : 1), limit)) {
    return QMI_IDL_LIB_PARAMETER_ERROR;
  }
  // Byte arrays (most of an Extend-QMI message) go as one copy.
  if (e.aggregate == nullptr && size == 1) {
    return w.put(base + e.offset, count) ? 0 : QMI_IDL_LIB_BUFFER_TOO_SMALL;
  }
  for (uint32_t i = 0; i < count; ++i) {
    int rc = encode_one(e, base + e.offset + i * size, w, depth);
    if (rc != 0) return rc;
  }
  return 0;
}

int decode_element(const Element &e, uint8_t *base, uint32_t limit, Reader &r, int depth) {
  const uint32_t size = c_element_size(e);
  if (!fits(e.offset, static_cast<uint64_t>(size) * (e.is_array ? e.max_count : 1), limit)) {
    return QMI_IDL_LIB_PARAMETER_ERROR;
  }
  uint32_t count = e.is_array ? e.max_count : 1;
  if (e.variable) {
    if (!fits(e.len_offset, 4, limit)) return QMI_IDL_LIB_PARAMETER_ERROR;
    uint64_t wire_count = 0;
    if (!r.get_le(&wire_count, e.count_is_16 ? 2 : 1)) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
    if (wire_count > e.max_count) return QMI_IDL_LIB_ARRAY_TOO_BIG;
    count = static_cast<uint32_t>(wire_count);
    store_scalar(base + e.len_offset, count, 4);
  }
  if (e.aggregate == nullptr && size == 1) {
    return r.get(base + e.offset, count) ? 0 : QMI_IDL_LIB_LENGTH_INCONSISTENCY;
  }
  for (uint32_t i = 0; i < count; ++i) {
    int rc = decode_one(e, base + e.offset + i * size, r, depth);
    if (rc != 0) return rc;
  }
  return 0;
}

template <typename Fn>
int for_each_aggregate_member(const Element &e, int depth, Fn fn) {
  if (depth >= kMaxAggregateDepth || e.aggregate->p_encoded_type_data == nullptr) {
    return QMI_IDL_LIB_PARAMETER_ERROR;
  }
  TableReader tr(e.aggregate->p_encoded_type_data);
  for (int n = 0; tr.peek() != QMI_IDL_END_OF_TYPE; ++n) {
    if (n >= kMaxTlvs) return QMI_IDL_LIB_PARAMETER_ERROR;
    Element member;
    int rc = read_element(tr, e.aggregate_table, &member);
    if (rc == 0) rc = fn(member);
    if (rc != 0) return rc;
  }
  return 0;
}

int encode_aggregate(const Element &e, const uint8_t *base, Writer &w, int depth) {
  return for_each_aggregate_member(e, depth, [&](const Element &m) {
    return encode_element(m, base, e.aggregate->c_struct_sz, w, depth + 1);
  });
}

int decode_aggregate(const Element &e, uint8_t *base, Reader &r, int depth) {
  return for_each_aggregate_member(e, depth, [&](const Element &m) {
    return decode_element(m, base, e.aggregate->c_struct_sz, r, depth + 1);
  });
}

// Parses every TLV entry of a message's table.
int read_message_table(const MessageInfo &info, Element *out, int *n) {
  *n = 0;
  if (info.elements == nullptr) return 0;
  TableReader tr(info.elements);
  for (;;) {
    if (*n >= kMaxTlvs) return QMI_IDL_LIB_PARAMETER_ERROR;
    Element &e = out[*n];
    int rc = read_tlv_entry(tr, info.table, &e);
    if (rc != 0) return rc;
    if (e.optional && e.valid_offset >= info.c_struct_sz) return QMI_IDL_LIB_PARAMETER_ERROR;
    ++*n;
    if (e.last) return 0;
  }
}

}  // namespace

int lookup_message(const qmi_idl_service_object *svc, qmi_idl_type_of_message_type kind,
                   uint16_t msg_id, MessageInfo *info) {
  if (svc == nullptr || info == nullptr || kind < QMI_IDL_REQUEST ||
      kind >= QMI_IDL_NUM_MSG_TYPES || svc->p_type_table == nullptr) {
    return QMI_IDL_LIB_PARAMETER_ERROR;
  }
  const qmi_idl_service_message_table_entry *ids = svc->msgid_to_msg[kind];
  int lo = 0, hi = static_cast<int>(svc->n_msgs[kind]) - 1;
  while (ids != nullptr && lo <= hi) {
    int mid = (lo + hi) / 2;
    if (ids[mid].qmi_message_id == msg_id) {
      const uint16_t table_index = ids[mid].message_table_message_id >> 12;
      const uint16_t msg_index = ids[mid].message_table_message_id & 0x0FFF;
      const qmi_idl_type_table_object *t = referenced_table(svc->p_type_table, table_index);
      if (t == nullptr || msg_index >= t->n_messages || t->p_messages == nullptr) {
        return QMI_IDL_LIB_PARAMETER_ERROR;
      }
      info->c_struct_sz = t->p_messages[msg_index].c_struct_sz;
      info->elements = t->p_messages[msg_index].p_encoded_type_data;
      info->table = t;
      info->max_msg_len = ids[mid].max_msg_len;
      return QMI_IDL_LIB_NO_ERR;
    }
    if (ids[mid].qmi_message_id < msg_id) {
      lo = mid + 1;
    } else {
      hi = mid - 1;
    }
  }
  return QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND;
}

int encode_message(const qmi_idl_service_object *svc, qmi_idl_type_of_message_type kind,
                   uint16_t msg_id, const void *c_struct, uint32_t c_len, uint8_t *out,
                   uint32_t out_cap, uint32_t *out_len) {
  MessageInfo info;
  int rc = lookup_message(svc, kind, msg_id, &info);
  if (rc != 0) return rc;
  if (out_len == nullptr || (out == nullptr && out_cap != 0)) return QMI_IDL_LIB_PARAMETER_ERROR;
  Element elements[kMaxTlvs];
  int n = 0;
  rc = read_message_table(info, elements, &n);
  if (rc != 0) return rc;
  if (n > 0 && (c_struct == nullptr || c_len < info.c_struct_sz)) {
    return QMI_IDL_LIB_PARAMETER_ERROR;
  }
  const auto *base = static_cast<const uint8_t *>(c_struct);
  Writer w(out, out_cap);
  for (int i = 0; i < n; ++i) {
    const Element &e = elements[i];
    if (e.optional && base[e.valid_offset] == 0) continue;
    const uint32_t header_at = w.len();
    if (!w.put_le(e.tlv_type, 1) || !w.put_le(0, 2)) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
    rc = encode_element(e, base, info.c_struct_sz, w, 0);
    if (rc != 0) return rc;
    const uint32_t value_len = w.len() - header_at - 3;
    if (value_len > 0xFFFF) return QMI_IDL_LIB_ARRAY_TOO_BIG;
    w.at(header_at + 1)[0] = static_cast<uint8_t>(value_len);
    w.at(header_at + 1)[1] = static_cast<uint8_t>(value_len >> 8);
  }
  *out_len = w.len();
  return QMI_IDL_LIB_NO_ERR;
}

int decode_message(const qmi_idl_service_object *svc, qmi_idl_type_of_message_type kind,
                   uint16_t msg_id, const uint8_t *tlvs, uint32_t tlv_len, void *c_struct,
                   uint32_t c_len) {
  MessageInfo info;
  int rc = lookup_message(svc, kind, msg_id, &info);
  if (rc != 0) return rc;
  if (tlvs == nullptr && tlv_len != 0) return QMI_IDL_LIB_PARAMETER_ERROR;
  if (info.c_struct_sz > 0 && c_struct == nullptr) return QMI_IDL_LIB_PARAMETER_ERROR;
  if (c_len < info.c_struct_sz) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
  Element elements[kMaxTlvs];
  int n = 0;
  rc = read_message_table(info, elements, &n);
  if (rc != 0) return rc;
  auto *base = static_cast<uint8_t *>(c_struct);
  if (info.c_struct_sz > 0) memset(base, 0, info.c_struct_sz);

  bool seen[kMaxTlvs] = {};
  Reader r(tlvs, tlv_len);
  while (r.left() > 0) {
    uint64_t type = 0, len = 0;
    if (!r.get_le(&type, 1) || !r.get_le(&len, 2) || len > r.left()) {
      return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
    }
    const uint8_t *value = tlvs + (tlv_len - r.left());
    int index = -1;
    for (int i = 0; i < n; ++i) {
      if (elements[i].tlv_type == type) index = i;
    }
    if (index < 0) {
      if (type < 0x10) return QMI_IDL_LIB_UNKNOWN_MANDATORY_TLV;
      r.skip(static_cast<uint32_t>(len));
      continue;
    }
    if (seen[index]) return QMI_IDL_LIB_TLV_DUPLICATED;
    seen[index] = true;
    r.skip(static_cast<uint32_t>(len));
    // The value must be consumed exactly: a short or long TLV is inconsistent.
    Reader value_reader(value, static_cast<uint32_t>(len));
    rc = decode_element(elements[index], base, info.c_struct_sz, value_reader, 0);
    if (rc != 0) return rc;
    if (value_reader.left() != 0) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
    if (elements[index].optional) base[elements[index].valid_offset] = 1;
  }
  for (int i = 0; i < n; ++i) {
    if (!elements[i].optional && !seen[i]) return QMI_IDL_LIB_MISSING_TLV;
  }
  return QMI_IDL_LIB_NO_ERR;
}

}  // namespace rpk_qmi
