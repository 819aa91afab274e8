#pragma once

#include "support/conversation.h"

#include <string>
#include <vector>

/// One conversation of each kind, each good to its end. The local folder holds "kept" and "sent".
struct SampleConversation {
    const char* Name;
    const char* Operation;
    std::string Script;
};

inline const QByteArray SampleKept = "old bytes";
inline const QByteArray SampleSent = "bytes to send";
inline const QByteArray SampleReceived = "new\r\nbytes";

inline const std::string SamplePassive = R"(
    C: EPSV
    S: 229 here (|||4001|)
    -- listen 4001
)";

inline const std::string SampleOldPassive = R"(
    C: EPSV
    S: 502 what?
    C: PASV
    S: 227 here (127,0,0,1,15,161)
    -- listen 4001
)";

inline const std::string SampleActive = R"(
    C: EPSV
    S: 502 what?
    C: PASV
    S: 425 not from there
    C: PORT *
    S: 200 fine
)";

inline std::vector<SampleConversation> SampleConversations()
{
    const std::string binary = "C: TYPE I\nS: 200 fine\n";
    const std::string incoming = R"(
        -- accept
        S: 150 coming
        D: new\r\n
        D: bytes
        -- end
        S: 226 done
    )";
    const std::string outgoing = R"(
        -- accept
        S: 150 go on
        U: bytes to send
        S: 226 stored
    )";
    const std::string called = "-- call\n";
    return {
        {"list", "DIR", LogIn + SamplePassive + "C: LIST\n" + incoming},
        {"names", "LS", LogIn + SampleOldPassive + "C: NLST\n" + incoming},
        {"receive", R"(GET "kept" "kept")", LogIn + binary + SamplePassive + "C: RETR kept\n" + incoming},
        {"receive, passive", R"(GET "kept" "kept")", LogIn + binary + SampleOldPassive + "C: RETR kept\n" + incoming},
        {"send", R"(PUT "sent" "sent")", LogIn + binary + SamplePassive + "C: STOR sent\n" + outgoing},
        {"list, active", "DIR", LogIn + SampleActive + "C: LIST\n" + called + incoming},
        {"receive, active", R"(GET "kept" "kept")",
         LogIn + binary + SampleActive + "C: RETR kept\n" + called + incoming},
        {"send, active", R"(PUT "sent" "sent")", LogIn + binary + SampleActive + "C: STOR sent\n" + called + outgoing},
        {"rename", R"(RENAME "a" "b")", LogIn + "C: RNFR a\nS: 350 go on\nC: RNTO b\nS: 250 done"},
        {"folder", "CD x", LogIn + "C: CWD x\nS: 250-all\nS:  the rules\nS: 250 there"},
        {"folder above", "CDUP", LogIn + "C: CDUP\nS: 502 what?\nC: CWD ..\nS: 250 there"},
        {"other letters", "CD \xc3\xbc",
         LogIn +
             "C: FEAT\nS: 211-can\nS:  UTF8\nS: 211 end\nC: OPTS UTF8 ON\nS: 200 on\nC: CWD \xc3\xbc\nS: 250 there"},
        {"make", "MKDIR x", LogIn + "C: MKD x\nS: 257 \"/x\" made"},
        {"delete", "DELETE x", LogIn + "C: DELE x\nS: 250 gone"},
        {"size", "SIZE x", LogIn + binary + "C: SIZE x\nS: 213 5"},
        {"where", "PWD", LogIn + "C: PWD\nS: 257 \"/x\" is it"},
    };
}
