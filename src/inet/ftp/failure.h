#pragma once

#include <string>

namespace Ftp {

/// Why a command failed: the one thing that is thrown inside a conversation. Outside there are only values.
struct Failure {
    enum Kinds {
        Refused,     ///< the server said no; Code and Text are its own, the session goes on
        Connection,  ///< the network ended it
        TimedOut,    ///< no progress for as long as the request time-out allows
        Cancelled,   ///< the user ended it
        Protocol,    ///< what came was not understood, or not what it claimed to be
        LocalFile,   ///< a file on this side could not be read or written
        Request,     ///< the command or its address makes no sense; nothing was sent
    };

    Kinds Kind;
    int Code;          ///< the server's three digits, else an Internet error number (12000 range)
    std::string Text;  ///< the server's text, else a plain sentence
};

/// Internet error numbers as they are widely known.
enum ErrorNumber {
    TimeOutError = 12002,
    InternalError = 12004,
    AddressError = 12005,
    SchemeError = 12006,
    NameError = 12007,
    OperationError = 12016,
    CancelledError = 12017,
    ConnectError = 12029,
    AbortedError = 12030,
    ResetError = 12031,
    CertificateDateError = 12037,
    CertificateNameError = 12038,
    CertificateAuthorityError = 12045,
    ResponseError = 12152,
    SecureChannelError = 12157,
    CertificateError = 12169,
};

}  // namespace Ftp
