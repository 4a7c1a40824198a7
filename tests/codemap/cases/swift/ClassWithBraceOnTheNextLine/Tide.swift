class Tide
{
    var height = 0.0
}
