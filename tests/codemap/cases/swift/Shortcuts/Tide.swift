// navrel: Harbour
struct A {
    func f() {
        b() //navrel:Inside
        let c = "// navrel: none"
    }
}
/* text
   // navrel: In a block
*/
