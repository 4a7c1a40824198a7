namespace [[deprecated]] old { int a; }
namespace sea::inline v1 { int b; }
