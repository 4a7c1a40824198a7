ASN1_SEQUENCE(OTHERNAME) = {
    ASN1_SIMPLE(OTHERNAME, type_id, ASN1_OBJECT),
    ASN1_EXP(OTHERNAME, value, ASN1_ANY, 0),
} ASN1_SEQUENCE_END(OTHERNAME)

IMPLEMENT_ASN1_FUNCTIONS(OTHERNAME)

ASN1_ITEM_TEMPLATE(NAMES) = EX_TEMPLATE_TYPE(0, NAMES) ASN1_ITEM_TEMPLATE_END(NAMES)

int compare(const NAME *a, const NAME *b) {
    return 0;
}

static int values[] = {1, 2}, more[] = {
#ifdef A
    3
#endif
};
int last = 1;

ASN1_SEQUENCE_cb(PARAMS, params_cb) = {
    ASN1_EXP_OPT(PARAMS, hash, X509_ALGOR, 0),
} ASN1_SEQUENCE_END_cb(PARAMS, PARAMS)

IMPLEMENT_ASN1_FUNCTIONS_const(PARAMS)

static int isAllowed(const EVP_MD *md) {
    return 1;
}

X509 *X509_new(void) {
    return 0;
}
