// Named readers and writers of single records: `int ReadShape(stream, version, shape)` and
// `bool WriteShape(stream, version, shape)` for code outside the codecs.
//
// A header declares them, with DECLARE_..., and one source file defines them, with DEFINE_... and the record's
// Layout. A reader returns 0, or 1 on a short read or a refused value; what was read before that stays in the
// record. A writer returns false if something could not be stored.
#pragma once
#include "src/frame/codec/stream.h"

// A record whose stored form depends on the version of the file.
#define DECLARE_RECORD_CODEC(Name, Record)                                           \
  int Read##Name(::oldtorvio::codec::InStream& stream, int version, Record& record); \
  bool Write##Name(::oldtorvio::codec::OutStream& stream, int version, const Record& record)
#define DEFINE_RECORD_CODEC(Name, Record)                                                         \
  int Read##Name(::oldtorvio::codec::InStream& stream, int version, Record& record) {             \
    return ::oldtorvio::codec::resultOf(::oldtorvio::codec::readRecord(stream, version, record)); \
  }                                                                                               \
  bool Write##Name(::oldtorvio::codec::OutStream& stream, int version, const Record& record) {    \
    return ::oldtorvio::codec::writeRecord(stream, version, record);                              \
  }

// A record that is stored the same way at every version.
#define DECLARE_UNVERSIONED_CODEC(Name, Record)                         \
  int Read##Name(::oldtorvio::codec::InStream& stream, Record& record); \
  bool Write##Name(::oldtorvio::codec::OutStream& stream, const Record& record)
#define DEFINE_UNVERSIONED_CODEC(Name, Record)                                                \
  int Read##Name(::oldtorvio::codec::InStream& stream, Record& record) {                      \
    return ::oldtorvio::codec::resultOf(::oldtorvio::codec::readUnversioned(stream, record)); \
  }                                                                                           \
  bool Write##Name(::oldtorvio::codec::OutStream& stream, const Record& record) {             \
    return ::oldtorvio::codec::writeUnversioned(stream, record);                              \
  }

// A list with a count, by a list rule. Declared like a record.
#define DEFINE_LIST_CODEC(Name, List, rule)                                                                    \
  int Read##Name(::oldtorvio::codec::InStream& stream, int version, List& list) {                              \
    return ::oldtorvio::codec::resultOf(::oldtorvio::codec::Reader(stream, version).list(FIELDS(list), rule)); \
  }                                                                                                            \
  bool Write##Name(::oldtorvio::codec::OutStream& stream, int version, const List& list) {                     \
    return ::oldtorvio::codec::Writer(stream, version).list(FIELDS(list), rule);                               \
  }
// The same with a reader that returns whether it could read the list.
#define DECLARE_CHECKED_CODEC(Name, List)                                         \
  bool Read##Name(::oldtorvio::codec::InStream& stream, int version, List& list); \
  bool Write##Name(::oldtorvio::codec::OutStream& stream, int version, const List& list)
#define DEFINE_CHECKED_LIST_CODEC(Name, List, rule)                                        \
  bool Read##Name(::oldtorvio::codec::InStream& stream, int version, List& list) {         \
    return ::oldtorvio::codec::Reader(stream, version).list(FIELDS(list), rule);           \
  }                                                                                        \
  bool Write##Name(::oldtorvio::codec::OutStream& stream, int version, const List& list) { \
    return ::oldtorvio::codec::Writer(stream, version).list(FIELDS(list), rule);           \
  }
#define DEFINE_UNVERSIONED_LIST_CODEC(Name, List, rule)                                               \
  int Read##Name(::oldtorvio::codec::InStream& stream, List& list) {                                  \
    return ::oldtorvio::codec::resultOf(::oldtorvio::codec::Reader(stream).list(FIELDS(list), rule)); \
  }                                                                                                   \
  bool Write##Name(::oldtorvio::codec::OutStream& stream, const List& list) {                         \
    return ::oldtorvio::codec::Writer(stream).list(FIELDS(list), rule);                               \
  }
