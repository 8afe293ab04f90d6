// The service interfaces, one header each.
#pragma once
