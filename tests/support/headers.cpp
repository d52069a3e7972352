// This file holds nothing: the target of the headers that all test programs share wants a source.
