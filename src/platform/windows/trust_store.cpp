#include "platform/trust_store.h"

// The other header needs this one before it.
// clang-format off
#include <windows.h>
#include <wincrypt.h>
// clang-format on

// The system's header has macros of these names.
#undef X509_NAME
#undef X509_EXTENSIONS
#undef PKCS7_SIGNER_INFO
#undef OCSP_REQUEST
#undef OCSP_RESPONSE

#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

// "ROOT" holds the authorities that this user and this computer trust.
void AddSystemTrust(x509_store_st* store)
{
    HCERTSTORE const system = CertOpenSystemStoreW(0, L"ROOT");
    PCCERT_CONTEXT entry = nullptr;
    while (system != nullptr && (entry = CertEnumCertificatesInStore(system, entry)) != nullptr) {
        const unsigned char* bytes = entry->pbCertEncoded;
        X509* certificate = d2i_X509(nullptr, &bytes, static_cast<long>(entry->cbCertEncoded));
        if (certificate == nullptr) continue;
        (void)X509_STORE_add_cert(store, certificate);
        X509_free(certificate);
    }
    if (system != nullptr) CertCloseStore(system, 0);
    // Whoever names a file or folder of further authorities means it, here as elsewhere.
    (void)X509_STORE_set_default_paths(store);
}
