#!/usr/bin/perl
# Lays out the records of a 32-bit type library with 4-byte packing, in place.
# widl aligns CURRENCY (and other 8-byte) fields to 8 in every type library,
# but 32-bit automation callers pack records at 4, so a record that holds one
# would be described 4 bytes too large. Field offsets, record sizes and record
# alignments are recomputed from the fields; nothing else in the file moves.
use strict;
use warnings;

my $packing = 4;
my $path = shift or die "usage: pack_tlb_records.pl FILE.tlb\n";
open(my $in, '<:raw', $path) or die "$path: $!\n";
my $data = do { local $/; <$in> };
close($in);

sub int_at { return unpack('l<', substr($data, $_[0], 4)); }
sub put_int { substr($data, $_[0], 4) = pack('l<', $_[1]); }

die "$path: not an MSFT type library\n" unless substr($data, 0, 4) eq 'MSFT';
my $typeinfo_count = int_at(0x20);
my $segments = 0x54 + ((int_at(0x14) & 0x100) ? 4 : 0) + 4 * $typeinfo_count;
my $typeinfo_segment = int_at($segments);        # segment 0: the type infos
my $typedesc_segment = int_at($segments + 9 * 16);  # segment 9: type descriptions
my $kTypeInfoSize = 0x64;
my $kRecord = 1;

# Width and alignment of the automation types a record may hold (32-bit).
my %base = (2 => 2, 3 => 4, 4 => 4, 5 => 8, 6 => 8, 7 => 8, 8 => 4, 9 => 4, 10 => 4, 11 => 2,
            12 => 16, 13 => 4, 16 => 1, 17 => 1, 18 => 2, 19 => 4, 20 => 8, 21 => 8, 22 => 4,
            23 => 4, 25 => 4, 26 => 4, 27 => 4);
my %layout;  # type info index => [size, alignment]

sub min { return $_[0] < $_[1] ? $_[0] : $_[1]; }
sub round_up { my ($n, $a) = @_; return int(($n + $a - 1) / $a) * $a; }

sub field_shape {
  my ($type) = @_;
  if ($type & 0x80000000) {
    my $vt = $type & 0x7fff;
    die "$path: field type $vt not handled\n" unless exists $base{$vt};
    return ($base{$vt}, min($base{$vt}, $packing));
  }
  my $kind = int_at($typedesc_segment + $type) & 0xffff;
  return (4, 4) if $kind == 26;  # a pointer
  die "$path: field type $kind not handled\n" unless $kind == 29;  # a user-defined type
  my $index = int_at($typedesc_segment + $type + 4) / $kTypeInfoSize;
  return @{ lay_out($index) };
}

sub lay_out {
  my ($index) = @_;
  return $layout{$index} if $layout{$index};
  my $base = $typeinfo_segment + $index * $kTypeInfoSize;
  my $kind = int_at($base);
  if (($kind & 0xf) != $kRecord) {
    $layout{$index} = [int_at($base + 0x50), ($kind >> 11) & 0x1f];
    return $layout{$index};
  }
  my $fields = (int_at($base + 0x18) >> 16) & 0xffff;
  my $record = int_at($base + 0x04) + 4;
  my ($end, $alignment) = (0, 1);
  for (1 .. $fields) {
    my ($width, $align) = field_shape(int_at($record + 4));
    my $offset = round_up($end, $align);
    put_int($record + 16, $offset);
    $end = $offset + $width;
    $alignment = $align if $align > $alignment;
    $record += int_at($record) & 0xffff;
  }
  my $size = round_up($end, $alignment);
  put_int($base + 0x50, $size);
  put_int($base, ($kind & ~0xffc0) | ($alignment << 11) | ($alignment << 6));
  $layout{$index} = [$size, $alignment];
  return $layout{$index};
}

lay_out($_) for 0 .. $typeinfo_count - 1;
open(my $out, '>:raw', "$path.tmp") or die "$path.tmp: $!\n";
print $out $data;
close($out) or die "$path.tmp: $!\n";
rename("$path.tmp", $path) or die "$path: $!\n";
