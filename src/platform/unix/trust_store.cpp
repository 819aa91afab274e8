#include "platform/trust_store.h"

#include <openssl/x509_vfy.h>

// The library knows where the system keeps them; SSL_CERT_FILE and SSL_CERT_DIR name other places.
void AddSystemTrust(x509_store_st* store)
{
    (void)X509_STORE_set_default_paths(store);
}
