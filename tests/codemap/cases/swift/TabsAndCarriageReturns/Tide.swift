struct A {
	let a = 1
	func f() {
	}
}
