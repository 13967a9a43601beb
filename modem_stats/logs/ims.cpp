// IMS log-packet parsers: RTP packet info, SIP message, VoLTE session setup and end.
#include <cstdio>

#include "modem_stats/logs/log_steps.h"
#include "modem_stats/modem_stats_out.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

// Field offsets below count from the bit base after the one-byte version.
using modem_stats_log_short::byte_bit;

// ---- 0x1568 RTP sequence number and payload --------------------------------

// Provisional: no public definition of this packet exists; the positions are
// our own reading of captured packets.
//
//   byte 0 version | 1 direction | 2 rat | 3 sequence(2) | 5 ssrc(4) | 9 rtp time(4)
//        13 codec_type | 14 media type | 15 payload size(2) | 17 logged size(2)
//        19 marker | 20 codec mode request | 21 more frames | 22 frame_type
struct rtp_layout {
  uint32_t version;
  modem_stats_field codec_type;
  modem_stats_field frame_type;
};
constexpr rtp_layout kRtpLayouts[] = {
    {13, {"codec_type", byte_bit(13), 8}, {"frame_type", byte_bit(22), 8}},
};

// ---- 0x156E SIP message ----------------------------------------------------

//   byte 0 version | 1 direction (0 DL, 1 UL) | 2 sdp_presence | 3 sip_call_id_len
//        4 sip_msg_len(2) | 6 sip_msg_logged_bytes(2) | 8 msg_id(2) | 10 response code(2)
//        16 call id text, sip_call_id_len bytes including its NUL
struct sip_layout {
  uint32_t version;
  modem_stats_field direction, sdp_presence, sip_call_id_len, sip_msg_len, sip_msg_logged_bytes,
      msg_id, call_id_byte;
};
constexpr sip_layout kSipLayouts[] = {
    {1,
     {"direction", byte_bit(1), 8},
     {"sdp_presence", byte_bit(2), 8},
     {"sip_call_id_len", byte_bit(3), 8},
     {"sip_msg_len", byte_bit(4), 16},
     {"sip_msg_logged_bytes", byte_bit(6), 16},
     {"msg_id", byte_bit(8), 16},
     {"sip_call_id", byte_bit(16), 8}},
};

// ---- 0x1830 / 0x1831 VoLTE session setup and end ---------------------------

// The session packets interleave four length-prefixed strings with fixed
// fields, so a field's position is its offset when every string is empty plus
// the lengths of the strings before it:
//
//   byte 0 version | 1 L1 | dialled string (L1) | direction | L2 | call id (L2)
//        call type(4) | L3 originating_url_len | uri (L3) | L4 terminating_url_len | uri (L4)
//        result or end_cause(2) | call_setup_delay(4, ms) | rat
struct session_field {
  modem_stats_field field;  // bit offset when all strings are empty
  int strings_before;       // how many of L1..L4 precede it
};
struct session_layout {
  uint32_t version;
  session_field dial_len, direction, call_id_len, originating_url_len, terminating_url_len, cause,
      call_setup_delay, rat;
};
constexpr session_layout session_row(uint32_t version, const char *cause_name) {
  return {version,
          {{"dial_string_len", byte_bit(1), 8}, 0},
          {{"direction", byte_bit(2), 8}, 1},
          {{"call_id_len", byte_bit(3), 8}, 1},
          {{"originating_url_len", byte_bit(8), 8}, 2},
          {{"terminating_url_len", byte_bit(9), 8}, 3},
          {{cause_name, byte_bit(10), 16}, 4},
          {{"call_setup_delay", byte_bit(12), 32}, 4},
          {{"rat", byte_bit(16), 8}, 4}};
}
constexpr session_layout kSetupLayouts[] = {session_row(2, "result"), session_row(4, "result")};
// Provisional for version 6, which no public definition describes; taken as
// the layout of versions 2 and 4.
constexpr session_layout kEndLayouts[] = {session_row(2, "end_cause"), session_row(4, "end_cause"),
                                          session_row(6, "end_cause")};

struct session_values {
  uint32_t version;
  int direction, cause, rat, originating_url_len, terminating_url_len;
  uint32_t call_setup_delay;
};

bool read_session(const session_layout &l, session_values *v) {
  int lens[4] = {};  // L1..L4 as they are read
  auto read = [&](const session_field &sf, int64_t *out) {
    int skipped = 0;
    for (int i = 0; i < sf.strings_before; ++i) skipped += lens[i];
    return modem_stats_unpk_bits(sf.field, 8 * skipped, out);
  };
  int64_t x = 0;
  if (!read(l.dial_len, &x)) return false;
  lens[0] = static_cast<int>(x);
  if (!read(l.direction, &x)) return false;
  v->direction = static_cast<int>(x);
  if (!read(l.call_id_len, &x)) return false;
  lens[1] = static_cast<int>(x);
  if (!read(l.originating_url_len, &x)) return false;
  lens[2] = v->originating_url_len = static_cast<int>(x);
  if (!read(l.terminating_url_len, &x)) return false;
  lens[3] = v->terminating_url_len = static_cast<int>(x);
  if (!read(l.cause, &x)) return false;
  v->cause = static_cast<int>(x);
  if (!read(l.call_setup_delay, &x)) return false;
  v->call_setup_delay = static_cast<uint32_t>(x);
  if (!read(l.rat, &x)) return false;
  v->rat = static_cast<int>(x);
  return true;
}

// Both session packets print and pack the same shape; only the cause's name differs.
template <size_t N>
bool parse_session(const session_layout (&table)[N], const char *name, uint32_t stat_id_value,
                   uint32_t *stat_id, modem_stats_single **record) {
  session_values v{};
  const session_layout *l = modem_stats_log_read_version(table, name, &v.version);
  if (l == nullptr) return false;
  if (!read_session(*l, &v)) return false;

  modem_stats_printf(
      "version = %d, direction = %d, %s = %d, call_setup_delay = %d, rat = %d, "
      "originating_url_len = %d, terminating_url_len = %d\n",
      static_cast<int>(v.version), v.direction, l->cause.field.name, v.cause,
      static_cast<int>(v.call_setup_delay), v.rat, v.originating_url_len, v.terminating_url_len);

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", v.version, 1), modem_stats_pk_int("direction", v.direction, 1),
       modem_stats_pk_int(l->cause.field.name, v.cause, 2),
       modem_stats_pk_int("call_setup_delay", v.call_setup_delay, 4),
       modem_stats_pk_int("rat", v.rat, 1),
       modem_stats_pk_int("originating_url_len", v.originating_url_len, 1),
       modem_stats_pk_int("terminating_url_len", v.terminating_url_len, 1)},
      stat_id_value, stat_id, record);
}

}  // namespace

bool modem_stats_parse_1568_diag_log_ims_rtp_sn_and_payload(uint32_t *stat_id,
                                                            modem_stats_single **record) {
  uint32_t version = 0;
  const rtp_layout *l = modem_stats_log_read_version(
      kRtpLayouts, "modem_stats_parse_1568_diag_log_ims_rtp_sn_and_payload", &version);
  if (l == nullptr) return false;
  int codec_type = 0, frame_type = 0;
  if (!modem_stats_log_bits(l->codec_type, 0, &codec_type)) return false;
  if (!modem_stats_log_bits(l->frame_type, 0, &frame_type)) return false;

  modem_stats_printf("version = %d, codec_type = %d, frame_type = %d\n", static_cast<int>(version),
                     codec_type, frame_type);
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 1), modem_stats_pk_int("codec_type", codec_type, 1),
       modem_stats_pk_int("frame_type", frame_type, 1)},
      136, stat_id, record);
}

bool modem_stats_parse_156e_diag_log_ims_sip_message(uint32_t *stat_id,
                                                     modem_stats_single **record) {
  uint32_t version = 0;
  const sip_layout *l = modem_stats_log_read_version(
      kSipLayouts, "modem_stats_parse_156e_diag_log_ims_sip_message", &version);
  if (l == nullptr) return false;
  int direction = 0, sdp = 0, call_id_len = 0, msg_len = 0, logged = 0, msg_id = 0;
  if (!modem_stats_log_bits(l->direction, 0, &direction) ||
      !modem_stats_log_bits(l->sdp_presence, 0, &sdp) ||
      !modem_stats_log_bits(l->sip_call_id_len, 0, &call_id_len) ||
      !modem_stats_log_bits(l->sip_msg_len, 0, &msg_len) ||
      !modem_stats_log_bits(l->sip_msg_logged_bytes, 0, &logged) ||
      !modem_stats_log_bits(l->msg_id, 0, &msg_id)) {
    return false;
  }
  // The call id is at most 255 bytes, so it always lies inside the readable
  // area; it is read whole before packing begins.
  uint8_t call_id[255] = {};
  for (int i = 0; i < call_id_len; ++i) {
    int b = 0;
    if (!modem_stats_log_bits(l->call_id_byte, 8 * i, &b)) return false;
    call_id[i] = static_cast<uint8_t>(b);
  }

  modem_stats_printf(
      "version = %d, direction = %d, sdp_presence = %d, sip_call_id_len = %d, sip_msg_len = %d, "
      "sip_msg_logged_bytes = %d, msg_id = %d\n",
      static_cast<int>(version), direction, sdp, call_id_len, msg_len, logged, msg_id);

  modem_stats_pk_begin();
  if (!modem_stats_pk("version", version, 1) || !modem_stats_pk("direction", direction, 1) ||
      !modem_stats_pk("sdp_presence", sdp, 1) ||
      !modem_stats_pk("sip_call_id_len", call_id_len, 1) ||
      !modem_stats_pk("sip_msg_len", msg_len, 2) ||
      !modem_stats_pk("sip_msg_logged_bytes", logged, 2) || !modem_stats_pk("msg_id", msg_id, 2)) {
    return false;
  }
  for (int i = 0; i < call_id_len; ++i) {
    if (!modem_stats_pk("sip_call_id", call_id[i], 1)) return false;
  }
  return modem_stats_pk_finish(116, stat_id, record);
}

bool modem_stats_parse_1830_diag_log_ims_volte_session_setup(uint32_t *stat_id,
                                                             modem_stats_single **record) {
  return parse_session(kSetupLayouts, "modem_stats_parse_1830_diag_log_ims_volte_session_setup",
                       125, stat_id, record);
}

bool modem_stats_parse_1831_diag_log_ims_volte_session_end(uint32_t *stat_id,
                                                           modem_stats_single **record) {
  return parse_session(kEndLayouts, "modem_stats_parse_1831_diag_log_ims_volte_session_end", 126,
                       stat_id, record);
}
