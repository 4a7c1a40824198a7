// TODO: one
func f() {
    // FIXME: two
    let a = "// TODO: none"
    b() // HACK: three
    #warning("four")
}
/* XXX: five
   TODO(mia): six */
#error("seven { \"eight\"")
/// - WARNING: nine
