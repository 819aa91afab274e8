#pragma once

struct x509_store_st;

/// Adds the certificates of the authorities that this system trusts to a store of OpenSSL's. What cannot be read is
/// left out: whoever it would have vouched for is then not trusted. Any thread, one store at a time.
void AddSystemTrust(x509_store_st* store);
