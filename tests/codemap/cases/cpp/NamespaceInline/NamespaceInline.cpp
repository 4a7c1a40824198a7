inline namespace v1 { int a; }
namespace [[deprecated]] old { int b; }
namespace std _GLIBCXX_VISIBILITY(default) { int c; }
