protocol A
struct B {}
class C: D
enum E {}
