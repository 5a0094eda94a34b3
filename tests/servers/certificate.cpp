#include "servers/certificate.h"

#include <memory>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace servers {

namespace {

template <auto Free> struct Deleter {
    template <class T> void operator()(T *thing) const { Free(thing); }
};
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using X509Pointer = std::unique_ptr<X509, Deleter<X509_free>>;
using Bio = std::unique_ptr<BIO, Deleter<BIO_free_all>>;
using Extension = std::unique_ptr<X509_EXTENSION, Deleter<X509_EXTENSION_free>>;

void check(bool good)
{
    if (!good) {
        throw std::runtime_error("cannot make a certificate");
    }
}

Bio memory(const std::string &text)
{
    return Bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

void addExtension(X509 *certificate, int kind, const std::string &value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()));
    check(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

void setNames(X509 *certificate, const CertificateOptions &options)
{
    X509_NAME *subject = X509_get_subject_name(certificate);
    check(X509_NAME_add_entry_by_txt(
              subject, "CN", MBSTRING_UTF8,
              reinterpret_cast<const unsigned char *>(options.commonName.c_str()), -1, -1, 0)
          == 1);
    std::string list;
    for (const std::string &name : options.names) {
        list += (list.empty() ? "" : ",") + name;
    }
    addExtension(certificate, NID_basic_constraints, "critical,CA:TRUE");
    if (!list.empty()) {
        addExtension(certificate, NID_subject_alt_name, list);
    }
}

std::string text(BIO *bio)
{
    char *data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    return { data, static_cast<std::size_t>(size) };
}

/// By the issuer, or by its own key.
void sign(X509 *certificate, EVP_PKEY *own, const Certificate &issuer)
{
    if (issuer.certificate.empty()) {
        check(X509_set_issuer_name(certificate, X509_get_subject_name(certificate)) == 1);
        check(X509_sign(certificate, own, EVP_sha256()) > 0);
        return;
    }
    const X509Pointer by(
        PEM_read_bio_X509(memory(issuer.certificate).get(), nullptr, nullptr, nullptr));
    const Key key(PEM_read_bio_PrivateKey(memory(issuer.key).get(), nullptr, nullptr, nullptr));
    check(by && key);
    check(X509_set_issuer_name(certificate, X509_get_subject_name(by.get())) == 1);
    check(X509_sign(certificate, key.get(), EVP_sha256()) > 0);
}

} // namespace

Certificate makeCertificate(const CertificateOptions &options)
{
    const Key key(EVP_EC_gen("P-256")); // quick to make, known to all servers
    const X509Pointer certificate(X509_new());
    check(key && certificate);
    check(X509_set_version(certificate.get(), X509_VERSION_3) == 1);
    unsigned char serial[8];
    check(RAND_bytes(serial, sizeof(serial)) == 1);
    serial[0] &= 0x7f;
    BIGNUM *number = BN_bin2bn(serial, sizeof(serial), nullptr);
    BN_to_ASN1_INTEGER(number, X509_get_serialNumber(certificate.get()));
    BN_free(number);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), options.validFromSeconds);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), options.validUntilSeconds);
    check(X509_set_pubkey(certificate.get(), key.get()) == 1);
    setNames(certificate.get(), options);
    sign(certificate.get(), key.get(), options.issuer);

    const Bio certificateText(BIO_new(BIO_s_mem()));
    const Bio keyText(BIO_new(BIO_s_mem()));
    check(PEM_write_bio_X509(certificateText.get(), certificate.get()) == 1);
    check(PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr)
          == 1);
    return { text(certificateText.get()), text(keyText.get()) };
}

} // namespace servers
