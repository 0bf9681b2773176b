#include "ui/viewer/viewer_type.h"

const char* const gvga_pixmap_names[85] = {
    "plus",      "minus",     "port",       "portsdlc", "porttr",     "portx25",   "ls",
    "lshost",    "lsdown",    "lspeer",     "pu",       "lu03",       "dlu",       "lu62",
    "blank",     "user",      "pool",       "cpic",     "mode",       "node",      "portether",
    "portfddi",  "rjew",      "ludisp",     "lurje",    "luprint",    "lsimpl",    "remsysd",
    "remsys",    "remplud",   "remplu",     "remsysf",  "disp3270",   "print3270", "disp5250",
    "print5250", "usergroup", "tnclient",   "convsec",  "sesssec",    "dlurport",  "remplua",
    "start",     "startins",  "stop",       "stopins",  "zoom",       "zoomins",   "add",
    "addins",    "del",       "delins",     "copy",     "copyins",    "terminal",  "key",
    "status",    "statusins", "poollu03",   "lu3270",   "lu5250",     "v5",        "backnode",
    "portfr",    "portescon", "portblkmux", "tnassoc",  "rtpconn",    "lsrt",      "lsr",
    "adddflt",   "deldflt",   "addrmap",    "portmap",  "gateway",    "sockover",  "appcip",
    "acclist",   "tpdef",     "tpload",     "portmpc",  "tnredirect", "portip",    "portmpcplus",
    "ludispsec",
};
