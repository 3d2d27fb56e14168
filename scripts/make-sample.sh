#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/make-sample.sh
#
# Makes samples/clip.avi from ffmpeg's test sources: three seconds of MPEG-4 video, with B-frames
# and a key frame a second, and MP3 sound, indexed by idx1. The same ffmpeg makes the same bytes.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
mkdir -p samples
ffmpeg -nostdin -v error -y \
    -f lavfi -i testsrc2=size=320x240:rate=25:duration=3 \
    -f lavfi -i sine=frequency=440:sample_rate=44100:duration=3 \
    -c:v mpeg4 -threads 1 -vtag FMP4 -b:v 300k -bf 2 -g 25 -c:a libmp3lame -b:a 64k \
    -flags:v +bitexact -flags:a +bitexact -fflags +bitexact -f avi samples/clip.avi
