func f() {
    enum A { case b }
}
enum C { case d }
