func a()
    -> Int
{
    1
}
func b() ->
    Int { 2 }
