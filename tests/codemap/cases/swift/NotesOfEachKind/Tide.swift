// TODO: a
// FIXME: b
// HACK: c
// XXX: d
// WARNING: e
#warning("f")
#error("g")
// TODO h
// todo: i
// Note: none
