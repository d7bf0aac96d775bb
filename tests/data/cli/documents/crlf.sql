SELECT parcel_id FROM parcels;
SELECT  nope FROM parcels;
