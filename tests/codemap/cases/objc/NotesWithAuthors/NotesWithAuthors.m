// TODO(mia): measure the tide
/* FIXME: the moon */
int a; // HACK: by hand
