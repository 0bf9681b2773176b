// The frames between the node operator library and the node service, over a Unix stream socket on
// one machine: a fixed header in host byte order, then the verb control block, then the data
// buffer. Each side drops the connection on a frame that breaks these rules; only a frame's
// operator pays for it.
#pragma once

#include "nof/vcb.h"

inline constexpr NB_ULONG WIRE_MAGIC = 0x54534C59; // "TSLY"
inline constexpr NB_USHORT WIRE_VERSION = 1;
inline constexpr NB_ULONG WIRE_MAX_BLOCK = 1u
                                           << 20; // larger blocks or buffers are a protocol error
inline constexpr NB_ULONG WIRE_MAX_BUFFER = 1u << 20;

enum WIRE_KIND : NB_USHORT {
    WIRE_HELLO = 1,   // first frame of each side, sent without waiting for the other's: the
                      // operator's has no block, the service's a WIRE_HELLO_BLOCK
    WIRE_REQUEST = 2, // operator to service: one verb
    WIRE_ANSWER = 3,  // service to operator: the block with return codes, and the filled part of a
                      // query's buffer
    WIRE_INDICATION = 4, // service to operator: an indication or configuration indication
    WIRE_IMMEDIATE = 5,  // service to operator: the opcodes (16 bits each) that the library is to
                         // complete at once
    WIRE_CONTROL = 6,    // command line of tessaly-simctl to the service, as text in the block
    WIRE_CONTROL_ANSWER = 7, // its answer: text in the buffer, exit status in request_id
};

#pragma pack(push, 1)
struct WIRE_FRAME {
    NB_ULONG length;          // of the whole frame, this field included
    NB_USHORT kind;           // WIRE_KIND
    NB_USHORT version;        // WIRE_VERSION
    NB_ULONG request_id;      // of a request and its answer; 0 otherwise
    NB_ULONG target;          // handle the verb goes to, or the indication comes from
    NB_ULONG correlator;      // request: the issuer's value; indication: that of its registration
    NB_ULONG block_length;    // bytes of block that follow
    NB_ULONG buffer_length;   // bytes of buffer that follow the block
    NB_ULONG buffer_capacity; // request: the size of the operator's buffer; 0 without one
};
NOF_SIZE(WIRE_FRAME, 32);

struct WIRE_HELLO_BLOCK {
    NB_ULONG magic; // WIRE_MAGIC
    NB_BYTE client_server;
    NB_BYTE read_only; // this operator may only read
    NB_BYTE reserved[2];
};
NOF_SIZE(WIRE_HELLO_BLOCK, 8);
#pragma pack(pop)
