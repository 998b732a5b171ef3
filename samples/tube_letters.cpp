#include "samples/tube_letters.h"

#include "samples/curves.h"

namespace vireon::scenes {

std::vector<std::vector<Point>> LetterTubes(char letter) {
    switch (letter) {
        case 'V': return {{{0.0, 0.0}, {0.5, 2.0}, {1.0, 0.0}}};
        case 'I': return {{{0.0, 0.0}, {0.0, 2.0}}};
        case 'R':
            return {{{0.0, 2.0},
                     {0.0, 0.0},
                     {0.65, 0.0},
                     {0.95, 0.22},
                     {0.95, 0.78},
                     {0.65, 1.0},
                     {0.0, 1.0}},
                    {{0.5, 1.0}, {1.0, 2.0}}};
        case 'E':
            return {{{1.0, 0.0}, {0.0, 0.0}, {0.0, 2.0}, {1.0, 2.0}}, {{0.0, 1.0}, {0.8, 1.0}}};
        case 'O': return {Arc({0.5, 1.0}, 0.52, 1.0, 0.0, 1.0)};
        case 'N': return {{{0.0, 2.0}, {0.0, 0.0}, {1.0, 2.0}, {1.0, 0.0}}};
        case 'B':
            return {{{0.0, 1.0},
                     {0.7, 1.0},
                     {0.95, 1.25},
                     {0.95, 1.75},
                     {0.7, 2.0},
                     {0.0, 2.0},
                     {0.0, 0.0},
                     {0.65, 0.0},
                     {0.88, 0.22},
                     {0.88, 0.78},
                     {0.65, 1.0}}};
        case 'A': return {{{0.0, 2.0}, {0.5, 0.0}, {1.0, 2.0}}, {{0.18, 1.3}, {0.82, 1.3}}};
        default: return {};
    }
}

}  // namespace vireon::scenes
