namespace sea {
using harbour::tide;
using Moon = int;
}
