namespace sea::shore { int depth; }
namespace a { namespace b { int c; } }
